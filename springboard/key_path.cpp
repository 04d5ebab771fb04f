// SPDX-License-Identifier: MIT
#include "springboard/key_path.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <system_error>
#include <variant>
#include <vector>

namespace quillet {

namespace {

using standin::Array;
using standin::Dictionary;
using standin::Value;

/// The entry whose key is the longest that `path` begins with; takes that off.
std::optional<Value> takeEntry(const Dictionary& dictionary, std::string_view& path) {
    std::size_t size = path.size();
    for (;;) {
        if (auto found = dictionary.find(path.substr(0, size))) {
            path.remove_prefix(size);
            return found;
        }
        size = path.substr(0, size).rfind('.');
        if (size == path.npos) return std::nullopt;
    }
}

std::optional<Value> takeElement(const Array& array, std::string_view& path) {
    const std::string_view digits = path.substr(0, path.find('.'));
    std::size_t index = 0;
    const auto end = std::from_chars(digits.begin(), digits.end(), index);
    if (end.ec != std::errc{} || end.ptr != digits.end() || index >= array.size()) {
        return std::nullopt;
    }
    path.remove_prefix(digits.size());
    return array.elements()[index];
}

std::optional<Value> takeStep(const Value& value, std::string_view& path) {
    if (const auto* const dictionary = std::get_if<Dictionary>(&value)) {
        return takeEntry(*dictionary, path);
    }
    const auto* const array = std::get_if<Array>(&value);
    return array != nullptr ? takeElement(*array, path) : std::nullopt;
}

}  // namespace

std::optional<Value> valueAt(Value value, std::string_view path) {
    for (;;) {
        auto next = takeStep(value, path);
        if (!next || path.empty()) return next;
        path.remove_prefix(1);  // The dot.
        value = *std::move(next);
    }
}

}  // namespace quillet
