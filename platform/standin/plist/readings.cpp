// SPDX-License-Identifier: MIT
#include "platform/standin/plist/readings.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <type_traits>

#include "platform/standin/plist/decimal.h"

namespace quillet::standin {
namespace {

constexpr std::string_view spaceBefore = " \t\n\v\f\r";

void skipAnyOf(std::string_view& text, std::string_view characters) {
    text.remove_prefix(std::min(text.find_first_not_of(characters), text.size()));
}

bool flagOf(std::string_view text) {
    skipAnyOf(text, spaceBefore);
    if (text.starts_with('+') || text.starts_with('-')) text.remove_prefix(1);
    skipAnyOf(text, "0");
    return !text.empty() && std::string_view{"YyTt123456789"}.find(text.front()) != text.npos;
}

float numberOf(std::string_view text) {
    skipAnyOf(text, spaceBefore);
    const auto number = readDecimal<float>(text);
    return number ? number->value : 0.0F;
}

float nearestFloat(double number) {
    using Limits = std::numeric_limits<float>;
    // Half a unit in the last place above the largest float: from here on, rounding gives infinity.
    constexpr double overflow = 0x1.ffffffp+127;
    if (std::abs(number) >= overflow) return number < 0 ? -Limits::infinity() : Limits::infinity();
    return static_cast<float>(std::clamp<double>(number, Limits::lowest(), Limits::max()));
}

float numberOf(double number) { return nearestFloat(number); }

float numberOf(std::integral auto number) { return static_cast<float>(number); }

template <class Number>
requires std::is_arithmetic_v<Number>
bool flagOf(Number number) { return number != 0; }

/// The answer of `reading` for a text or a number, which are the kinds that have readings.
template <class Answer, class Reading>
std::optional<Answer> read(const Value& value, Reading reading) {
    return std::visit(
        [&](const auto& content) -> std::optional<Answer> {
            using Content = std::remove_cvref_t<decltype(content)>;
            if constexpr (std::is_arithmetic_v<Content> || std::is_same_v<Content, std::string>) {
                return reading(content);
            } else {
                return std::nullopt;
            }
        },
        static_cast<const Value::variant&>(value));
}

}  // namespace

std::optional<bool> boolValue(const Value& value) {
    return read<bool>(value, [](const auto& content) { return flagOf(content); });
}

std::optional<float> floatValue(const Value& value) {
    return read<float>(value, [](const auto& content) { return numberOf(content); });
}

}  // namespace quillet::standin
