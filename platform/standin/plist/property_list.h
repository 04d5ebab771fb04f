// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/standin/plist/value.h"

namespace quillet::standin {

/// How deep arrays and dictionaries may nest. What nests deeper is malformed.
inline constexpr int maxDepth = 512;

/// The value in `bytes`, in the XML or the binary form; nothing when they are malformed. Time and
/// memory are bounded by the size of `bytes`, whatever they hold.
std::optional<Value> readPropertyList(std::string_view bytes);
std::optional<Value> readXMLPropertyList(std::string_view bytes);
std::optional<Value> readBinaryPropertyList(std::string_view bytes);

/// `value`, which nests no deeper than maxDepth and whose strings are UTF-8, in the XML form. It
/// reads back as an equal value, but that a date loses its fraction of a second.
std::string writePropertyList(const Value& value);

}  // namespace quillet::standin
