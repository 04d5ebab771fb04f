// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <charconv>
#include <cstddef>
#include <string_view>
#include <type_traits>

namespace quillet::standin {

/// A line of a journal as it is put together, in memory of its own: words with a blank in front,
/// the last of them a full stop, without which a line is not whole. A byte that is no printable
/// ASCII, a blank, "%" and "=" stand as "%" and two hexadecimal digits. Words that do not fit are
/// left out.
class JournalLine {
public:
    void add(std::string_view word);
    void add(std::string_view key, std::string_view value);
    void add(std::string_view key, const char* value) { add(key, std::string_view{value}); }

    /// A flag is 1 or 0.
    template <class Number>
    requires std::is_arithmetic_v<Number>
    void add(std::string_view key, Number number) {
        std::array<char, 32> digits;
        if constexpr (std::is_same_v<Number, bool>) {
            add(key, std::string_view{number ? "1" : "0"});
        } else {
            const char* const end = std::to_chars(digits.begin(), digits.end(), number).ptr;
            add(key, std::string_view{digits.begin(), end});
        }
    }

    /// The whole line, valid as long as this. It begins with a line's end and has none behind: what
    /// somebody who died has left of a line does not swallow it.
    std::string_view end();

private:
    static constexpr std::string_view mark = " .";
    static constexpr std::size_t capacity = 2048;

    void put(char c);
    void putEscaped(std::string_view text);
    /// Takes back what was put since the line had that size, if it does not fit.
    void keepWhole(std::size_t before);

    std::array<char, capacity> text_{'\n'};
    std::size_t size_ = 1;
    bool isOverfull_ = false;
};

}  // namespace quillet::standin
