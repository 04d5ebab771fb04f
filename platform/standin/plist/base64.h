// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string_view>

namespace quillet::standin {

/// Writes the bytes that `text` stands for to `bytes` and returns how many they are, at most three
/// for four characters; `bytes` may be where `text` begins. What is no digit is skipped, an "="
/// ends a group of four digits, and bits that make no whole byte are dropped: there is no text that
/// stands for nothing.
std::size_t decodeBase64(std::string_view text, char* bytes);

/// The characters that encodeBase64 writes for so many bytes.
constexpr std::size_t base64Size(std::size_t bytes) { return (bytes + 2) / 3 * 4; }

/// Writes `bytes` in base64 with padding to `text`, which has room for base64Size of them.
void encodeBase64(std::string_view bytes, char* text);

}  // namespace quillet::standin
