// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tests/platforms/macho/loader/image.h"

namespace quillet::macho {

struct Method {
    std::string selector;
    /// Of the answer and of the arguments, for example "i@:@", without their places.
    std::string types;
    const void* code;
};

/// An Objective-C class that a module defines, as its metadata tells.
struct ModuleClass {
    std::string name;
    /// Of the class object, in the module.
    const void* address;
    const void* superclass;
    std::uint32_t instanceSize;
    /// Whether the runtime must send it `load` when the module is loaded.
    bool hasLoad;
    std::vector<Method> classMethods;
    std::vector<Method> instanceMethods;
};

/// The method for `selector`, or null.
const Method* find(const std::vector<Method>& methods, std::string_view selector);

/// The classes in a module whose addresses are set. Throws BundleError.
std::vector<ModuleClass> readClasses(const Image& image);

}  // namespace quillet::macho
