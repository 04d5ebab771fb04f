// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <memory>
#include <stdexcept>

namespace quillet::standin {

/// Why a bundle cannot be loaded, in words for the user.
class BundleError : public std::runtime_error {
public:
    using runtime_error::runtime_error;
};

/// A bundle's code, loaded into this process until the object goes.
class Module {
public:
    virtual ~Module() = default;

    /// The address of a symbol that the module exports, or null.
    virtual void* symbol(const char* name) const = 0;
};

/// Loads the module in the file at `path`, which makes its classes known with registerClass before
/// the call returns. Throws BundleError; nothing then stays loaded.
using OpenModule = std::unique_ptr<Module> (*)(const std::filesystem::path& path);

/// The opener for this system's own modules; see dlopen(3).
std::unique_ptr<Module> openSharedObject(const std::filesystem::path& path);

}  // namespace quillet::standin
