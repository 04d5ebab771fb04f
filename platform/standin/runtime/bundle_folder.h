// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <utility>

#include "platform/standin/plist/value.h"
#include "platform/standin/runtime/instance.h"

namespace quillet::standin {

/// A bundle: a folder with a property list, to which classes may belong.
class BundleFolder final : public Instance {
public:
    /// Reads the folder's property list. Throws BundleError when it has none.
    explicit BundleFolder(std::filesystem::path path);
    /// The host's own bundle, which is no folder.
    explicit BundleFolder(Dictionary info) : info_{std::move(info)} {}

    std::string className() const override { return "NSBundle"; }

    /// Absolute, for as long as the one given was.
    const std::filesystem::path& path() const { return path_; }

    /// Where the module lies. Throws BundleError when the property list names none that is in the
    /// folder itself.
    std::filesystem::path executable() const;

    /// Empty when there is none.
    std::string identifier() const { return info("CFBundleIdentifier"); }

    /// The string for `key` in the property list; empty when there is none.
    std::string info(std::string_view key) const;
    /// The same in the bundle's development language, where that translates it.
    std::string localizedInfo(std::string_view key) const;

private:
    std::filesystem::path path_;
    Dictionary info_;
};

}  // namespace quillet::standin
