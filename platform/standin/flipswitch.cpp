// SPDX-License-Identifier: MIT
#include "platform/flipswitch.h"

#include <filesystem>

#include "platform/standin/device/device.h"
#include "platform/standin/runtime/data_source.h"
#include "platform/standin/runtime/instance.h"

namespace quillet {

using standin::Device;

FSSwitchPanel FSSwitchPanel::sharedPanel() {
    static standin::SharedInstance panel{"<FSSwitchPanel>"};
    Device::current().trace.answer(panel.description(), "FSSwitchPanel", "sharedPanel");
    return standin::share<FSSwitchPanel>(&panel);
}

void FSSwitchPanel::stateDidChangeForSwitchIdentifier(NSString identifier) const {
    standin::send(*this, [&](const standin::Instance& panel) {
        Device& device = Device::current();
        device.trace.call(panel.description(), "stateDidChangeForSwitchIdentifier:", identifier);
        device.framework.refresh(standin::text(identifier));
    });
}

}  // namespace quillet

namespace quillet::standin {

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
    const Bundle* const bundle = Device::current().framework.bundle(text(identifier));
    if (bundle == nullptr) return identifier;
    const std::string name = bundle->localizedInfo("CFBundleDisplayName");
    return name.empty() ? identifier : makeString(name);
}

NSString FSSwitchDataSource::glyphImageDescriptorOfState(FSSwitchState state, double /*size*/,
                                                         double /*scale*/,
                                                         NSString forSwitchIdentifier) {
    const Bundle* const bundle = Device::current().framework.bundle(text(forSwitchIdentifier));
    if (bundle == nullptr) return {};
    const auto path =
        bundle->folder() / (state == FSSwitchStateOff ? "glyph-off.pdf" : "glyph-on.pdf");
    return std::filesystem::exists(path) ? makeString(path.string()) : NSString{};
}

NSBundle FSSwitchDataSource::bundleForSwitchIdentifier(NSString identifier) {
    return share<NSBundle>(Device::current().framework.bundle(text(identifier)));
}

void FSSwitchDataSource::switchWasRegisteredForIdentifier(NSString /*identifier*/) {}

void FSSwitchDataSource::switchWasUnregisteredForIdentifier(NSString /*identifier*/) {}

BOOL FSSwitchDataSource::hasAlternateActionForSwitchIdentifier(NSString /*identifier*/) {
    return NO;
}

void FSSwitchDataSource::applyAlternateActionForSwitchIdentifier(NSString /*identifier*/) {}

BOOL FSSwitchDataSource::switchWithIdentifierIsEnabled(NSString /*identifier*/) { return YES; }

}  // namespace quillet::standin
