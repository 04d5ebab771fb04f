// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace quillet::standin {

/// How many of the first bytes are UTF-8 in shortest form, without surrogates or code points above
/// U+10FFFF.
std::size_t utf8Length(std::string_view bytes);

/// Whether all are.
inline bool isUTF8(std::string_view bytes) { return utf8Length(bytes) == bytes.size(); }

bool isASCII(std::string_view bytes);

/// Takes the character that `text`, which is not empty, begins with; U+FFFD for a byte that is no
/// UTF-8.
std::uint32_t takeCharacter(std::string_view& text);

/// Writes the character to `text`, which has room for four bytes, and returns where it ends; a
/// surrogate, or a number above U+10FFFF, stands for U+FFFD.
char* putUTF8(char* text, std::uint32_t codePoint);

/// Appends the character, as putUTF8 writes it.
void appendUTF8(std::string& text, std::uint32_t codePoint);

/// Appends the characters of `bytes`, UTF-16 with the high byte of each unit first or last. An
/// unpaired surrogate stands for U+FFFD; half a unit at the end is dropped.
enum class HighByte { first, last };
void appendUTF16(std::string& text, std::string_view bytes, HighByte order);

}  // namespace quillet::standin
