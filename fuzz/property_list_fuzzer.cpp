// SPDX-License-Identifier: MIT
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/standin/plist/property_list.h"

namespace {

using namespace quillet::standin;

void require(bool condition) {
    if (!condition) __builtin_trap();
}

/// `value` as the XML form keeps it: dates in whole seconds. NaN, equal to nothing, becomes 0.
Value comparable(const Value& value) {
    if (const auto* number = std::get_if<double>(&value)) {
        return std::isnan(*number) ? 0.0 : *number;
    }
    if (const auto* date = std::get_if<Date>(&value)) return Date{std::floor(date->seconds)};
    if (const auto* array = std::get_if<Array>(&value)) {
        Array copy;
        for (const Value& element : *array) copy.push_back(comparable(element));
        return copy;
    }
    if (const auto* dictionary = std::get_if<Dictionary>(&value)) {
        std::vector<Entry> copy;
        for (const auto& [key, entry] : dictionary->entries()) {
            copy.push_back({key, comparable(entry)});
        }
        return Dictionary{std::move(copy)};
    }
    return value;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto value = readPropertyList({reinterpret_cast<const char*>(data), size});
    if (!value) return 0;
    const std::string text = writePropertyList(*value);
    const auto again = readXMLPropertyList(text);
    require(again.has_value());
    require(comparable(*again) == comparable(*value));
    // Holds the order of the entries to account too, which equality does not regard.
    require(writePropertyList(*again) == text);
    return 0;
}
