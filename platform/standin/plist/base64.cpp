// SPDX-License-Identifier: MIT
#include "platform/standin/plist/base64.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace quillet::standin {
namespace {

constexpr std::string_view alphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::uint8_t notADigit = 64;

constexpr auto digitValues = [] {
    std::array<std::uint8_t, 256> values{};
    values.fill(notADigit);
    for (std::size_t i = 0; i < alphabet.size(); ++i) {
        values[static_cast<unsigned char>(alphabet[i])] = static_cast<std::uint8_t>(i);
    }
    return values;
}();

/// How many digits a text of `digits` lacks to end with a full group of four.
std::size_t missingDigits(std::size_t digits) { return (4 - digits % 4) % 4; }

bool isWhiteSpace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

}  // namespace

std::optional<std::string> decodeBase64(std::string_view text) {
    std::string bytes;
    bytes.reserve(text.size() / 4 * 3);
    std::uint32_t bits = 0;
    std::size_t digits = 0;
    std::size_t padding = 0;
    for (const char c : text) {
        if (isWhiteSpace(c)) continue;
        if (c == '=') {
            ++padding;
            continue;
        }
        const std::uint32_t value = digitValues[static_cast<unsigned char>(c)];
        if (value == notADigit || padding != 0) return std::nullopt;
        bits = bits << 6 | value;
        ++digits;
        // From the second digit of a group on, each digit completes a byte.
        if (digits % 4 != 1) bytes.push_back(static_cast<char>(bits >> 2 * missingDigits(digits)));
    }
    const std::size_t expected = missingDigits(digits);
    const std::uint32_t unused = bits & ((1U << 2 * expected) - 1);
    if (padding != expected || expected == 3 || unused != 0) return std::nullopt;
    return bytes;
}

std::string encodeBase64(std::string_view bytes) {
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        const std::string_view group = bytes.substr(i, 3);
        std::uint32_t bits = 0;
        for (std::size_t byte = 0; byte < 3; ++byte) {
            bits = bits << 8 | (byte < group.size() ? static_cast<unsigned char>(group[byte]) : 0U);
        }
        for (std::size_t digit = 0; digit < 4; ++digit) {
            const std::uint32_t value = bits >> (18 - 6 * digit) & 0x3FU;
            text.push_back(digit <= group.size() ? alphabet[value] : '=');
        }
    }
    return text;
}

}  // namespace quillet::standin
