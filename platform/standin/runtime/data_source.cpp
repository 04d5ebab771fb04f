// SPDX-License-Identifier: MIT
#include "platform/standin/runtime/data_source.h"

#include <filesystem>
#include <string>

#include "platform/standin/runtime/instances.h"
#include "platform/standin/runtime/switch_framework.h"

namespace quillet::standin {

BundleFolder* FSSwitchDataSource::bundle(const NSString& identifier) const {
    return framework_ == nullptr ? nullptr : framework_->bundle(text(identifier));
}

FSSwitchState FSSwitchDataSource::stateForSwitchIdentifier(NSString /*identifier*/) {
    return FSSwitchStateIndeterminate;
}

void FSSwitchDataSource::applyState(FSSwitchState /*state*/, NSString /*forSwitchIdentifier*/) {}

void FSSwitchDataSource::applyActionForSwitchIdentifier(NSString identifier) {
    const FSSwitchState state = stateForSwitchIdentifier(identifier);
    if (state == FSSwitchStateIndeterminate) return;
    applyState(state == FSSwitchStateOn ? FSSwitchStateOff : FSSwitchStateOn, identifier);
}

NSString FSSwitchDataSource::titleForSwitchIdentifier(NSString identifier) {
    const BundleFolder* const folder = bundle(identifier);
    if (folder == nullptr) return identifier;
    const std::string name = folder->localizedInfo("CFBundleDisplayName");
    return name.empty() ? identifier : makeString(name);
}

NSString FSSwitchDataSource::glyphImageDescriptorOfState(FSSwitchState state, double /*size*/,
                                                         double /*scale*/,
                                                         NSString forSwitchIdentifier) {
    const BundleFolder* const folder = bundle(forSwitchIdentifier);
    if (folder == nullptr) return {};
    const auto path =
        folder->path() / (state == FSSwitchStateOff ? "glyph-off.pdf" : "glyph-on.pdf");
    return std::filesystem::exists(path) ? makeString(path.string()) : NSString{};
}

NSBundle FSSwitchDataSource::bundleForSwitchIdentifier(NSString identifier) {
    return share<NSBundle>(bundle(identifier));
}

void FSSwitchDataSource::switchWasRegisteredForIdentifier(NSString /*identifier*/) {}

void FSSwitchDataSource::switchWasUnregisteredForIdentifier(NSString /*identifier*/) {}

BOOL FSSwitchDataSource::hasAlternateActionForSwitchIdentifier(NSString /*identifier*/) {
    return NO;
}

void FSSwitchDataSource::applyAlternateActionForSwitchIdentifier(NSString /*identifier*/) {}

BOOL FSSwitchDataSource::switchWithIdentifierIsEnabled(NSString /*identifier*/) { return YES; }

}  // namespace quillet::standin
