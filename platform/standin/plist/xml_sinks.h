// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <bit>
#include <charconv>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "platform/standin/plist/base64.h"
#include "platform/standin/plist/calendar.h"

namespace quillet::standin {

/// As many as a line of a usual file begins with, and more.
inline constexpr std::string_view tabs = "\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t";

/// The longest number in decimals, in bytes: a double's 17 digits, point, sign and exponent.
inline constexpr std::size_t maxNumberSize = 24;

/// What measures: the sink that only counts, numbers and dates as long as they can be. An integer's
/// digits stand for more than three bits each.
class Measure {
public:
    explicit Measure(std::size_t limit) : limit_{limit} {}

    void put(std::string_view text) { size_ += text.size(); }
    void put(char /*c*/) { ++size_; }
    void putTabs(std::size_t count) { size_ += count; }
    void putNumber(std::integral auto number) {
        constexpr std::size_t signAndLast = 2;
        const auto bits = std::bit_width(static_cast<std::uint64_t>(number));
        size_ += signAndLast + static_cast<std::size_t>(bits) / 3;
    }
    void putNumber(double /*number*/) { size_ += maxNumberSize; }
    void putDate(Date /*date*/) { size_ += maxDateSize; }
    void putBase64(std::string_view bytes) { size_ += base64Size(bytes.size()); }

    std::size_t size() const { return size_; }
    bool isFull() const { return size_ > limit_; }

private:
    std::size_t limit_;
    std::size_t size_ = 0;
};

/// The same to the byte, which takes as long as writing.
class ExactMeasure : public Measure {
public:
    using Measure::Measure;

    template <class Number>
    void putNumber(Number number) {
        std::array<char, maxNumberSize> digits;
        put({digits.begin(), std::to_chars(digits.begin(), digits.end(), number).ptr});
    }
    void putDate(Date date) {
        std::array<char, maxDateSize> text;
        put({text.begin(), formatDate(text.begin(), date)});
    }
};

/// What writes, to where there is room for all that a measure has counted, and for tabs.
class Pen {
public:
    explicit Pen(char* next) : next_{next} {}

    void put(std::string_view text) { next_ += text.copy(next_, text.size()); }
    void put(char c) { *next_++ = c; }
    void putTabs(std::size_t count) {
        // All at once, where there is always room for as many: what is too much is written over.
        for (; count > tabs.size(); count -= tabs.size()) put(tabs);
        std::memcpy(next_, tabs.data(), tabs.size());
        next_ += count;
    }
    template <class Number>
    void putNumber(Number number) {
        next_ = std::to_chars(next_, next_ + maxNumberSize, number).ptr;
    }
    void putDate(Date date) { next_ = formatDate(next_, date); }
    void putBase64(std::string_view bytes) {
        encodeBase64(bytes, next_);
        next_ += base64Size(bytes.size());
    }

    static bool isFull() { return false; }
    const char* next() const { return next_; }

private:
    char* next_;
};

}  // namespace quillet::standin
