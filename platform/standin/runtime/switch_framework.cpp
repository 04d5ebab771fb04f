// SPDX-License-Identifier: MIT
#include "platform/standin/runtime/switch_framework.h"

#include <algorithm>
#include <utility>

#include "platform/standin/runtime/instances.h"

namespace quillet::standin {

SwitchFramework::SwitchFramework(OpenModule openModule, Observers& observers)
    : openModule_{openModule}, observers_{observers} {
    host_.bundle.reset(
        new BundleFolder{Dictionary{{"CFBundleIdentifier", std::string{"com.apple.springboard"}}}});
}

std::string SwitchFramework::load(const std::filesystem::path& folder) {
    auto loaded = std::make_unique<Loaded>();
    loaded->bundle.reset(new BundleFolder{std::filesystem::absolute(folder)});
    const std::string identifier = loaded->bundle->identifier();
    if (identifier.empty()) throw BundleError(folder.string() + ": the bundle has no identifier");
    if (find(identifier) != nullptr) {
        throw BundleError(folder.string() + ": a switch \"" + identifier + "\" is loaded already");
    }
    open(*loaded);
    loaded->dataSource->setFramework(*this);
    switches_.push_back(std::move(loaded));
    dataSource(identifier)->switchWasRegisteredForIdentifier(makeString(identifier));
    return identifier;
}

void SwitchFramework::open(Loaded& loading) {
    const std::size_t observersBefore = observers_.count();
    loading_ = &loading;
    try {
        loading.module = openModule_(loading.bundle->executable());
        loading.dataSource = principalDataSource(loading);
    } catch (...) {
        // Their callbacks lie in the module, which goes.
        observers_.keepFirst(observersBefore);
        loading_ = &host_;
        throw;
    }
    loading_ = &host_;
}

FSSwitchDataSource* SwitchFramework::principalDataSource(const Loaded& loaded) {
    const std::string name = loaded.bundle->info("NSPrincipalClass");
    const auto found = std::ranges::find_if(loaded.classes, [&](const auto& cls) {
        return cls->className() == name && cls->dataSource != nullptr;
    });
    if (found != loaded.classes.end()) return (*found)->dataSource;
    throw BundleError(loaded.bundle->path().string() + ": the bundle has no principal class \"" +
                      name + "\"");
}

const SwitchFramework::Loaded* SwitchFramework::find(std::string_view identifier) const {
    const auto found = std::ranges::find_if(
        switches_, [&](const auto& loaded) { return loaded->bundle->identifier() == identifier; });
    return found == switches_.end() ? nullptr : found->get();
}

FSSwitchDataSource* SwitchFramework::dataSource(std::string_view identifier) const {
    const Loaded* const found = find(identifier);
    return found == nullptr ? nullptr : found->dataSource;
}

BundleFolder* SwitchFramework::bundle(std::string_view identifier) const {
    const Loaded* const found = find(identifier);
    return found == nullptr ? nullptr : found->bundle.get();
}

std::optional<FSSwitchState> SwitchFramework::refresh(std::string_view identifier) const {
    FSSwitchDataSource* const source = dataSource(identifier);
    if (source == nullptr) return std::nullopt;
    const FSSwitchState state = source->stateForSwitchIdentifier(makeString(identifier));
    if (redraw_) redraw_(identifier, state);
    return state;
}

ModuleClass& SwitchFramework::add(const ClassDescription& description) {
    return *loading_->classes.emplace_back(new ModuleClass{description, *loading_->bundle});
}

BundleFolder& SwitchFramework::bundleOf(const Class& cls) const {
    const auto defines = [&](const Loaded& loaded) {
        return std::ranges::any_of(
            loaded.classes, [&](const auto& known) { return word(*known) == cls.instance(); });
    };
    if (defines(*loading_)) return *loading_->bundle;
    const auto found =
        std::ranges::find_if(switches_, [&](const auto& loaded) { return defines(*loaded); });
    return found == switches_.end() ? *host_.bundle : *(*found)->bundle;
}

void* SwitchFramework::symbol(const char* name) const {
    for (const auto& loaded : switches_) {
        if (void* const address = loaded->module->symbol(name)) return address;
    }
    return nullptr;
}

}  // namespace quillet::standin
