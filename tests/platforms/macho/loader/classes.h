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

/// An instance variable.
struct Field {
    std::string name;
    /// For example "B".
    std::string type;
    /// In bytes, from the start of an instance.
    std::uint32_t offset;
    std::uint32_t size;
};

struct Property {
    std::string name;
    /// For example "TB,Vname".
    std::string attributes;
};

/// An Objective-C class that a module defines, as its metadata tells.
struct ModuleClass {
    std::string name;
    /// Of the class object, in the module.
    const void* address;
    const void* superclass;
    /// Where the class's own fields begin, behind those of its superclass, in bytes.
    std::uint32_t instanceStart;
    std::uint32_t instanceSize;
    /// Whether the runtime must send it `load` when the module is loaded.
    bool hasLoad;
    /// The names of those that the class says it keeps.
    std::vector<std::string> protocols;
    std::vector<Method> classMethods;
    std::vector<Method> instanceMethods;
    std::vector<Field> fields;
    std::vector<Property> properties;
};

/// The method for `selector`, or null.
const Method* find(const std::vector<Method>& methods, std::string_view selector);

/// The classes in a module whose addresses are set. Throws BundleError.
std::vector<ModuleClass> readClasses(const Image& image);

}  // namespace quillet::macho
