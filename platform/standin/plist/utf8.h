// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace quillet::standin {

/// Whether `bytes` are UTF-8 in shortest form, without surrogates or code points above U+10FFFF.
bool isUTF8(std::string_view bytes);

/// Appends the character to `text`. False, and `text` as it was, for a surrogate or a number
/// above U+10FFFF.
bool appendUTF8(std::string& text, std::uint32_t codePoint);

/// Appends the characters of `bytes`, UTF-16 with the high byte first. False for an odd number of
/// bytes or an unpaired surrogate; `text` then holds what preceded it.
bool appendUTF16BigEndian(std::string& text, std::string_view bytes);

}  // namespace quillet::standin
