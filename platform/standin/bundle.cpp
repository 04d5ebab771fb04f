// SPDX-License-Identifier: MIT
#include "platform/standin/runtime/bundle_folder.h"

#include <optional>

#include "platform/bundle.h"
#include "platform/standin/device/device.h"
#include "platform/standin/plist/property_list.h"
#include "platform/standin/runtime/switch_framework.h"

namespace quillet::standin {

namespace {

constexpr char regionKey[] = "CFBundleDevelopmentRegion";

std::string string(const Dictionary& dictionary, std::string_view key) {
    const Value* const value = dictionary.find(key);
    const auto* const string = value ? std::get_if<std::string>(value) : nullptr;
    return string ? *string : std::string{};
}

}  // namespace

Bundle::Bundle(std::filesystem::path folder) : folder_{std::move(folder)} {
    auto info = readDictionary(folder_ / "Info.plist");
    if (!info) {
        throw BundleError(folder_.string() + ": not a bundle (no readable Info.plist in it)");
    }
    info_ = std::move(*info);
}

std::string Bundle::info(std::string_view key) const { return string(info_, key); }

std::string Bundle::localizedInfo(std::string_view key) const {
    const auto translations =
        readDictionary(folder_ / (info(regionKey) + ".lproj") / "InfoPlist.strings");
    const std::string translated = translations ? string(*translations, key) : std::string{};
    return translated.empty() ? info(key) : translated;
}

}  // namespace quillet::standin

namespace quillet {

using standin::Device;
using standin::send;

NSBundle NSBundle::bundleForClass(Class cls) {
    Device& device = Device::current();
    standin::Bundle& bundle = device.framework.bundleOf(cls);
    device.trace.answer(bundle.description(), "NSBundle", "bundleForClass:", cls);
    return standin::share<NSBundle>(&bundle);
}

NSString NSBundle::bundleIdentifier() const {
    return send<standin::Bundle>(*this, [](const standin::Bundle& bundle) {
        const std::string identifier = bundle.info("CFBundleIdentifier");
        const NSString answer = identifier.empty() ? NSString{} : standin::makeString(identifier);
        Device::current().trace.answer(answer, bundle.description(), "bundleIdentifier");
        return answer;
    });
}

}  // namespace quillet
