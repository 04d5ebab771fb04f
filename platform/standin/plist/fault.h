// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace quillet::standin {

/// Where and why bytes are no property list.
struct Fault {
    /// In bytes from the first one, of an XML document's text in UTF-8.
    std::size_t offset = 0;
    /// A phrase of what is there instead. It lives on.
    const char* reason = "";
};

/// The fault that was found in the bytes of a file, in a phrase for people: "line 3, column 7: a
/// key without a value", or "offset 12: …" for the binary form. Lines and columns, of characters,
/// count from 1.
std::string describe(const Fault& fault, std::string_view file);

}  // namespace quillet::standin
