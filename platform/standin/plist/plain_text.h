// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <string_view>

namespace quillet::standin {

/// Whether a writer of XML puts something else in place of the character: markup and the control
/// characters but for tab and line feed.
inline bool needsEscape(char c) {
    const bool isControl = static_cast<unsigned char>(c) < 0x20 && c != '\t' && c != '\n';
    return isControl || c == '&' || c == '<' || c == '>';
}

/// Bytes of the longest run at the front of `text` of printing characters of ASCII that need no
/// escape.
inline std::size_t printingLength(std::string_view text) {
    // Sixteen at a time, by the compilers' vectors, which are the same for every processor.
    using Bytes [[gnu::vector_size(16)]] = signed char;
    using Words [[gnu::vector_size(16)]] = unsigned long long;
    const auto place = [](unsigned long long word) {
        return static_cast<std::size_t>(std::endian::native == std::endian::little
                                            ? std::countr_zero(word)
                                            : std::countl_zero(word)) /
               8;
    };
    std::size_t length = 0;
    for (; text.size() - length >= sizeof(Bytes); length += sizeof(Bytes)) {
        Bytes bytes;
        __builtin_memcpy(&bytes, text.data() + length, sizeof bytes);
        // Seen with a sign, what is not of ASCII is below the first printing character too.
        const auto special = (bytes < 0x20) | (bytes == '&') | ((bytes | 2) == '>');
        const auto words = reinterpret_cast<Words>(special);
        if (words[0] != 0) return length + place(words[0]);
        if (words[1] != 0) return length + sizeof words[0] + place(words[1]);
    }
    const auto isSpecial = [](char c) {
        return static_cast<signed char>(c) < 0x20 || needsEscape(c);
    };
    const auto rest = text.substr(length);
    return length + static_cast<std::size_t>(std::ranges::find_if(rest, isSpecial) - rest.begin());
}

/// Bytes of the run of such characters, tabs and line feeds, of which one is at `length`, the first
/// that is not printing.
[[gnu::noinline]] inline std::size_t lengthOfLines(std::string_view text, std::size_t length) {
    while (length < text.size() && (text[length] == '\n' || text[length] == '\t')) {
        ++length;
        length += printingLength(text.substr(length));
    }
    return length;
}

/// The same with tabs and line feeds, which few texts have.
inline std::size_t plainLength(std::string_view text) {
    const std::size_t length = printingLength(text);
    const bool goesOn = length < text.size() && (text[length] == '\n' || text[length] == '\t');
    return goesOn ? lengthOfLines(text, length) : length;
}

/// Whether all of `text` is that; fifteen bytes more can be read after it.
inline bool isPlainASCII(std::string_view text) {
    const std::size_t inSixteens = (text.size() + 15) / 16 * 16;
    const std::string_view more{text.data(), inSixteens};
    const std::size_t length = printingLength(more);
    return length >= text.size() || lengthOfLines(more, length) >= text.size();
}

/// Whether a writer of XML puts `text` down as it is.
inline bool isPlain(std::string_view text) {
    text.remove_prefix(plainLength(text));
    return std::none_of(text.begin(), text.end(), needsEscape);
}

}  // namespace quillet::standin
