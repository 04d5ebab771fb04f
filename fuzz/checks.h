// SPDX-License-Identifier: MIT
#pragma once

#include <span>
#include <string>

namespace quillet::standin {

/// What has to hold for any bytes.
struct Check {
    /// What it is about: the name of its fuzzer and of the folder of its findings.
    const char* name;
    /// Throws std::logic_error, which says what does not hold.
    void (*isPassedBy)(const std::string& bytes);
};

/// - forms: the readers by form and the choice between them.
/// - encodings: one text in several encodings is one value, or one fault.
/// - readings: a text and a number as a flag and as a number, by the C library's reading.
/// - rewrites: what was read is changed, written, read again and written again.
std::span<const Check> checks();

}  // namespace quillet::standin
