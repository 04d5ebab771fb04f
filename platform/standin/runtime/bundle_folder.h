// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

#include "platform/standin/plist/value.h"
#include "platform/standin/runtime/instance.h"

namespace quillet::standin {

/// Why a bundle cannot be loaded, in words for the user.
class BundleError : public std::runtime_error {
public:
    using runtime_error::runtime_error;
};

/// A bundle folder.
class Bundle final : public Instance {
public:
    /// Reads the folder's property list. Throws BundleError when it has none.
    explicit Bundle(std::filesystem::path folder);
    /// The host's own bundle, which is no folder.
    Bundle(std::filesystem::path folder, Dictionary info)
        : folder_{std::move(folder)}, info_{std::move(info)} {}

    std::string description() const override { return "<NSBundle>"; }

    const std::filesystem::path& folder() const { return folder_; }

    /// The string for `key` in the property list; empty when there is none.
    std::string info(std::string_view key) const;
    /// The same in the bundle's development language, where that translates it.
    std::string localizedInfo(std::string_view key) const;

private:
    std::filesystem::path folder_;
    Dictionary info_;
};

}  // namespace quillet::standin
