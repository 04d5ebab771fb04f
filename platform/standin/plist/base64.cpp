// SPDX-License-Identifier: MIT
#include "platform/standin/plist/base64.h"

#include <array>
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

std::uint32_t digitAt(std::string_view text, std::size_t index) {
    return digitValues[static_cast<unsigned char>(text[index])];
}

char digit(std::uint32_t bits) { return alphabet[bits & 0x3FU]; }

/// Writes the `count` whole bytes that a group's 24 bits begin with.
char* putBytes(char* bytes, std::uint32_t bits, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) *bytes++ = static_cast<char>(bits >> (16 - 8 * i));
    return bytes;
}

std::uint32_t bitsOf(char a, char b, char c) {
    const auto bits = [](char byte) { return std::uint32_t{static_cast<unsigned char>(byte)}; };
    return bits(a) << 16 | bits(b) << 8 | bits(c);
}

/// Writes the four digits of a group's 24 bits.
char* putDigits(char* text, std::uint32_t bits) {
    *text++ = digit(bits >> 18);
    *text++ = digit(bits >> 12);
    *text++ = digit(bits >> 6);
    *text++ = digit(bits);
    return text;
}

/// Takes four digits in a row, as most are. False when there are none here.
bool takeGroup(std::string_view& text, std::uint32_t& bits) {
    if (text.size() < 4) return false;
    const std::uint32_t a = digitAt(text, 0);
    const std::uint32_t b = digitAt(text, 1);
    const std::uint32_t c = digitAt(text, 2);
    const std::uint32_t d = digitAt(text, 3);
    if (((a | b | c | d) & notADigit) != 0) return false;
    bits = a << 18 | b << 12 | c << 6 | d;
    text.remove_prefix(4);
    return true;
}

/// Takes up to four digits, among whatever else. Returns how many there were.
std::size_t gatherGroup(std::string_view& text, std::uint32_t& bits) {
    std::size_t digits = 0;
    bits = 0;
    while (digits < 4 && !text.empty()) {
        const char c = text.front();
        const std::uint32_t value = digitAt(text, 0);
        text.remove_prefix(1);
        if (c == '=' && digits != 0) break;
        if (value == notADigit) continue;
        bits |= value << (18 - 6 * digits);
        ++digits;
    }
    return digits;
}

}  // namespace

std::size_t decodeBase64(std::string_view text, char* bytes) {
    char* end = bytes;
    while (!text.empty()) {
        std::uint32_t bits = 0;
        if (takeGroup(text, bits)) {
            end = putBytes(end, bits, 3);
        } else {
            const std::size_t digits = gatherGroup(text, bits);
            end = putBytes(end, bits, digits * 3 / 4);
        }
    }
    return static_cast<std::size_t>(end - bytes);
}

void encodeBase64(std::string_view bytes, char* text) {
    for (; bytes.size() >= 3; bytes.remove_prefix(3)) {
        text = putDigits(text, bitsOf(bytes[0], bytes[1], bytes[2]));
    }
    if (bytes.empty()) return;
    const bool isPair = bytes.size() == 2;
    putDigits(text, bitsOf(bytes[0], isPair ? bytes[1] : '\0', '\0'));
    if (!isPair) text[2] = '=';
    text[3] = '=';
}

}  // namespace quillet::standin
