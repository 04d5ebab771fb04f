// SPDX-License-Identifier: MIT
#include "platform/standin/runtime/bundle_folder.h"

#include <variant>

#include "platform/standin/runtime/dictionary_file.h"
#include "platform/standin/runtime/module.h"

namespace quillet::standin {

namespace {

std::string string(const Dictionary& dictionary, std::string_view key) {
    const auto value = dictionary.find(key);
    const auto* const string = value ? std::get_if<std::string>(&*value) : nullptr;
    return string ? *string : std::string{};
}

}  // namespace

BundleFolder::BundleFolder(std::filesystem::path path) : path_{std::move(path)} {
    const std::filesystem::path file = path_ / "Info.plist";
    auto info = readDictionary(file);
    if (!info) {
        throw BundleError(path_.string() + ": not a bundle (Info.plist: " + whyNoDictionary(file) +
                          ')');
    }
    info_ = std::move(*info);
}

std::filesystem::path BundleFolder::executable() const {
    const std::string name = info("CFBundleExecutable");
    if (name.empty() || name.find('/') != std::string::npos) {
        throw BundleError(path_.string() + ": the bundle names no executable");
    }
    return path_ / name;
}

std::string BundleFolder::info(std::string_view key) const { return string(info_, key); }

std::string BundleFolder::localizedInfo(std::string_view key) const {
    const std::string folder = info("CFBundleDevelopmentRegion") + ".lproj";
    const auto translations = readDictionary(path_ / folder / "InfoPlist.strings");
    const std::string translated = translations ? string(*translations, key) : std::string{};
    return translated.empty() ? info(key) : translated;
}

}  // namespace quillet::standin
