// SPDX-License-Identifier: MIT
#include "springboard/json.h"

#include <array>
#include <charconv>
#include <cmath>
#include <nlohmann/json.hpp>

#include "platform/standin/plist/utf8.h"

namespace quillet {

namespace {

std::string textOf(const std::string& text) {
    if (standin::isUTF8(text)) return Json(text).dump();
    std::string ascii;
    for (const char c : text) {
        if (static_cast<unsigned char>(c) < 0x80) {
            ascii += c;
        } else {
            ascii += "\uFFFD";
        }
    }
    return Json(ascii).dump(-1, ' ', true);
}

template <class Number>
std::string digitsOf(Number number) {
    std::array<char, 32> digits;
    return {digits.begin(), std::to_chars(digits.begin(), digits.end(), number).ptr};
}

std::string realOf(double number) {
    const auto single = static_cast<float>(number);
    if (!std::isfinite(number)) return "null";
    return double{single} == number ? digitsOf(single) : digitsOf(number);
}

std::string membersOf(const Json& object) {
    std::string line;
    for (const auto& [name, value] : object.items()) {
        line += (line.empty() ? "" : ", ") + textOf(name) + ": " + toLine(value);
    }
    return '{' + line + '}';
}

std::string elementsOf(const Json& array) {
    std::string line;
    for (const Json& value : array) line += (line.empty() ? "" : ", ") + toLine(value);
    return '[' + line + ']';
}

}  // namespace

std::string toLine(const Json& value) {
    switch (value.type()) {
        case Json::value_t::object:
            return membersOf(value);
        case Json::value_t::array:
            return elementsOf(value);
        case Json::value_t::string:
            return textOf(value.get_ref<const std::string&>());
        case Json::value_t::number_float:
            return realOf(value.get<double>());
        default:
            return value.dump();
    }
}

}  // namespace quillet
