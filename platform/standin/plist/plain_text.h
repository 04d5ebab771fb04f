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

/// Bytes of the longest run at the front of `text` of characters of ASCII that need no escape.
inline std::size_t plainLength(std::string_view text) {
    // Sixteen at a time, by the compilers' vectors, which are the same for every processor.
    using Bytes [[gnu::vector_size(16)]] = signed char;
    using Words [[gnu::vector_size(16)]] = unsigned long long;
    for (std::size_t length = 0; length < text.size(); length += sizeof(Bytes)) {
        Bytes bytes = Bytes{} + 'a';
        const std::size_t rest = text.size() - length;
        if (rest >= sizeof bytes) {
            __builtin_memcpy(&bytes, text.data() + length, sizeof bytes);
        } else {
            __builtin_memcpy(&bytes, text.data() + length, rest);
        }
        // Seen with a sign, what is not of ASCII is below the first printing character too.
        const auto special = ((bytes < 0x20) & (bytes != '\n') & (bytes != '\t')) | (bytes == '&') |
                             ((bytes | 2) == '>');
        const auto words = reinterpret_cast<Words>(special);
        const auto place = [](unsigned long long word) {
            return static_cast<std::size_t>(std::endian::native == std::endian::little
                                                ? std::countr_zero(word)
                                                : std::countl_zero(word)) /
                   8;
        };
        if (words[0] != 0) return length + place(words[0]);
        if (words[1] != 0) return length + sizeof words[0] + place(words[1]);
    }
    return text.size();
}

/// Whether a writer of XML puts `text` down as it is.
inline bool isPlain(std::string_view text) {
    text.remove_prefix(plainLength(text));
    return std::none_of(text.begin(), text.end(), needsEscape);
}

}  // namespace quillet::standin
