// SPDX-License-Identifier: MIT
#include "platform/standin/runtime/switch_framework.h"

#include <algorithm>

#include "platform/standin/device/device.h"

namespace quillet::standin {

SwitchFramework::SwitchFramework(OpenModule openModule)
    : openModule_{openModule},
      hostBundle_{new Bundle{
          {}, Dictionary{{"CFBundleIdentifier", std::string{"com.apple.springboard"}}}}} {}

std::string SwitchFramework::load(const std::filesystem::path& folder) {
    std::unique_ptr<Bundle, Counted> owned{new Bundle{std::filesystem::absolute(folder)}};
    Bundle& bundle = *owned;
    const std::string identifier = bundle.info("CFBundleIdentifier");
    if (identifier.empty()) throw BundleError(folder.string() + ": the bundle has no identifier");
    if (find(identifier) != nullptr) {
        throw BundleError(folder.string() + ": a switch \"" + identifier + "\" is loaded already");
    }
    bundles_.push_back(std::move(owned));
    open(bundle);
    const ClassInstance* const cls = principalClass(bundle);
    if (cls == nullptr) {
        throw BundleError(folder.string() + ": the bundle has no principal class \"" +
                          bundle.info("NSPrincipalClass") + "\"");
    }
    switches_.push_back({identifier, cls->dataSource, &bundle});
    cls->dataSource->switchWasRegisteredForIdentifier(makeString(identifier));
    return identifier;
}

void SwitchFramework::open(const Bundle& bundle) {
    const std::string executable = bundle.info("CFBundleExecutable");
    if (executable.empty() || executable.find('/') != std::string::npos) {
        throw BundleError(bundle.folder().string() + ": the bundle names no executable");
    }
    modules_.push_back(openModule_(bundle.folder() / executable));
}

const ClassInstance* SwitchFramework::principalClass(const Bundle& bundle) const {
    const auto found = std::ranges::find_if(classes_, [&](const auto& cls) {
        return cls->bundle == &bundle && cls->name == bundle.info("NSPrincipalClass");
    });
    return found == classes_.end() ? nullptr : found->get();
}

const SwitchFramework::Switch* SwitchFramework::find(std::string_view identifier) const {
    const auto found = std::ranges::find(switches_, identifier, &Switch::identifier);
    return found == switches_.end() ? nullptr : &*found;
}

FSSwitchDataSource* SwitchFramework::dataSource(std::string_view identifier) const {
    const Switch* const found = find(identifier);
    return found == nullptr ? nullptr : found->dataSource;
}

Bundle* SwitchFramework::bundle(std::string_view identifier) const {
    const Switch* const found = find(identifier);
    return found == nullptr ? nullptr : found->bundle;
}

void SwitchFramework::refresh(std::string_view identifier) const {
    FSSwitchDataSource* const source = dataSource(identifier);
    if (source == nullptr) return;
    const FSSwitchState state = source->stateForSwitchIdentifier(makeString(identifier));
    if (redraw_) redraw_(identifier, state);
}

ClassInstance& SwitchFramework::add(const ClassDescription& description) {
    Bundle* const bundle = bundles_.empty() ? hostBundle_.get() : bundles_.back().get();
    return *classes_.emplace_back(new ClassInstance{description, bundle});
}

Bundle& SwitchFramework::bundleOf(const Class& cls) const {
    const auto found = std::ranges::find_if(
        classes_, [&](const auto& known) { return word(*known) == cls.instance(); });
    return found == classes_.end() ? *hostBundle_ : *(*found)->bundle;
}

void* SwitchFramework::symbol(const char* name) const {
    for (const auto& module : modules_) {
        if (void* const address = module->symbol(name)) return address;
    }
    return nullptr;
}

void* registerClass(const ClassDescription& description) {
    ClassInstance& cls = Device::current().framework.add(description);
    description.load();
    return word(cls);
}

}  // namespace quillet::standin
