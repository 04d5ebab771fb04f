// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace quillet::test {

/// A place in a file whose bytes have one right value.
struct Field {
    std::string name;
    std::size_t at;
    std::size_t size;
};

/// What a reader finds in a signed module.
struct Reading {
    /// All fields that were compared.
    std::vector<Field> fields;
    /// A line for each of them that is not as it must be, which begins with the field's name.
    std::vector<std::string> faults;
};

/// Reads all of a signed module that a device's loader and kernel compare before they run it: the
/// segments, the systems it is for, the signature. Each field is compared with what it must be by
/// what stands elsewhere in the file, or by `identifier`, the name that the module is signed under.
Reading readSignedModule(const std::string& module, const std::string& identifier);

}  // namespace quillet::test
