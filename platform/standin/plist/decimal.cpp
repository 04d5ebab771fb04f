// SPDX-License-Identifier: MIT
#include "platform/standin/plist/decimal.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <limits>
#include <system_error>

namespace quillet::standin {
namespace {

constexpr std::string_view digits = "0123456789";

bool isDigitAt(std::string_view text, std::size_t index) {
    return index < text.size() && digits.find(text[index]) != digits.npos;
}

std::int64_t exponentOf(std::string_view text) {
    // Far beyond every exponent that counts, and far enough from the edge to be added to.
    constexpr std::int64_t huge = std::numeric_limits<std::int64_t>::max() / 4;
    if (text.starts_with('+')) text.remove_prefix(1);
    std::int64_t exponent = 0;
    const auto end = std::from_chars(text.data(), text.data() + text.size(), exponent);
    if (end.ec == std::errc::result_out_of_range) return text.starts_with('-') ? -huge : huge;
    return std::clamp(exponent, -huge, huge);
}

/// Whether `number`, which is unsigned and out of range, is too large rather than too small.
bool isTooLarge(std::string_view number) {
    const std::size_t e = std::min(number.find_first_of("eE"), number.size());
    const std::string_view mantissa = number.substr(0, e);
    const std::string_view exponent = number.substr(std::min(e + 1, number.size()));
    const std::size_t point = std::min(mantissa.find('.'), mantissa.size());
    const std::size_t leading = mantissa.find_first_of("123456789");
    // The power of ten of the first digit that is not zero, give or take one.
    const auto power = static_cast<std::int64_t>(point) - static_cast<std::int64_t>(leading);
    return power + exponentOf(exponent) > 0;
}

}  // namespace

template <class Real>
std::optional<Decimal<Real>> readDecimal(std::string_view text) {
    const bool isNegative = text.starts_with('-');
    const std::size_t sign = isNegative || text.starts_with('+') ? 1 : 0;
    const std::string_view number = text.substr(sign);
    if (!isDigitAt(number, 0) && !(number.starts_with('.') && isDigitAt(number, 1))) {
        return std::nullopt;
    }
    Real value = 0;
    const auto end = std::from_chars(number.data(), number.data() + number.size(), value);
    const auto length = static_cast<std::size_t>(end.ptr - number.data());
    if (end.ec == std::errc::result_out_of_range) {
        value = isTooLarge(number.substr(0, length)) ? std::numeric_limits<Real>::infinity() : 0;
    }
    return Decimal<Real>{isNegative ? -value : value, sign + length};
}

template std::optional<Decimal<float>> readDecimal(std::string_view text);
template std::optional<Decimal<double>> readDecimal(std::string_view text);

}  // namespace quillet::standin
