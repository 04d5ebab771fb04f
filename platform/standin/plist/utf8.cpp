// SPDX-License-Identifier: MIT
#include "platform/standin/plist/utf8.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>

namespace quillet::standin {
namespace {

constexpr std::uint32_t lastCodePoint = 0x10FFFF;
/// Stands for what is no character.
constexpr std::uint32_t replacement = 0xFFFD;

bool isSurrogate(std::uint32_t unit) { return unit >= 0xD800 && unit <= 0xDFFF; }
bool isHighSurrogate(std::uint32_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
bool isLowSurrogate(std::uint32_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

std::uint32_t byteAt(std::string_view bytes, std::size_t index) {
    return static_cast<unsigned char>(bytes[index]);
}

std::size_t asciiPrefix(std::string_view bytes) {
    constexpr std::uint64_t highBits = 0x8080808080808080U;
    std::size_t length = 0;
    for (std::uint64_t word = 0; bytes.size() - length >= sizeof word; length += sizeof word) {
        std::memcpy(&word, bytes.data() + length, sizeof word);
        if ((word & highBits) != 0) break;
    }
    while (length < bytes.size() && byteAt(bytes, length) < 0x80) ++length;
    return length;
}

/// Bytes of the character beyond ASCII that `bytes`, not empty, begin with; 0 when it is malformed.
std::size_t sequenceLength(std::string_view bytes) {
    const std::uint32_t lead = byteAt(bytes, 0);
    const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC0 || lead > 0xF7 || bytes.size() < length) return 0;
    std::uint32_t codePoint = lead & (0x7FU >> length);
    for (std::size_t i = 1; i < length; ++i) {
        if ((byteAt(bytes, i) & 0xC0U) != 0x80) return 0;
        codePoint = codePoint << 6 | (byteAt(bytes, i) & 0x3FU);
    }
    const std::uint32_t least = length == 4 ? 0x10000 : length == 3 ? 0x800 : 0x80;
    return codePoint < least || codePoint > lastCodePoint || isSurrogate(codePoint) ? 0 : length;
}

}  // namespace

std::size_t utf8Length(std::string_view bytes) {
    std::string_view rest = bytes;
    for (;;) {
        rest.remove_prefix(asciiPrefix(rest));
        const std::size_t length = rest.empty() ? 0 : sequenceLength(rest);
        if (length == 0) return bytes.size() - rest.size();
        rest.remove_prefix(length);
    }
}

bool isASCII(std::string_view bytes) { return asciiPrefix(bytes) == bytes.size(); }

std::uint32_t takeCharacter(std::string_view& text) {
    std::uint32_t character = byteAt(text, 0);
    std::size_t length = 1;
    if (character >= 0x80) {
        length = sequenceLength(text);
        character = length == 0 ? replacement : character & (0x7FU >> length);
        for (std::size_t i = 1; i < length; ++i) {
            character = character << 6 | (byteAt(text, i) & 0x3FU);
        }
        length = std::max<std::size_t>(length, 1);
    }
    text.remove_prefix(length);
    return character;
}

char* putUTF8(char* text, std::uint32_t codePoint) {
    if (codePoint > lastCodePoint || isSurrogate(codePoint)) codePoint = replacement;
    const auto put = [&](std::uint32_t byte) { *text++ = static_cast<char>(byte); };
    const auto putContinuation = [&](int shift) { put(0x80U | (codePoint >> shift & 0x3FU)); };
    if (codePoint < 0x80) {
        put(codePoint);
        return text;
    }
    if (codePoint < 0x800) {
        put(0xC0U | codePoint >> 6);
    } else {
        if (codePoint < 0x10000) {
            put(0xE0U | codePoint >> 12);
        } else {
            put(0xF0U | codePoint >> 18);
            putContinuation(12);
        }
        putContinuation(6);
    }
    putContinuation(0);
    return text;
}

void appendUTF8(std::string& text, std::uint32_t codePoint) {
    std::array<char, 4> bytes;
    text.append(bytes.data(), putUTF8(bytes.data(), codePoint));
}

void appendUTF16(std::string& text, std::string_view bytes, HighByte order) {
    const std::size_t high = order == HighByte::first ? 0 : 1;
    const auto unitAt = [=](std::size_t index) {
        return byteAt(bytes, index + high) << 8 | byteAt(bytes, index + 1 - high);
    };
    const std::size_t before = text.size();
    text.resize(before + bytes.size() / 2 * 3);
    char* end = text.data() + before;
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
        std::uint32_t codePoint = unitAt(i);
        if (isHighSurrogate(codePoint) && i + 3 < bytes.size() && isLowSurrogate(unitAt(i + 2))) {
            codePoint = 0x10000 + ((codePoint - 0xD800) << 10) + (unitAt(i + 2) - 0xDC00);
            i += 2;
        }
        end = putUTF8(end, codePoint);
    }
    text.resize(static_cast<std::size_t>(end - text.data()));
}

}  // namespace quillet::standin
