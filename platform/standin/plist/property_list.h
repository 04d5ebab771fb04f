// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
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

/// The bytes of the regular file at `path`; nothing when there is none or it cannot be read.
std::optional<std::string> readFile(const std::filesystem::path& path);

/// The dictionary in the file at `path`, in either form; nothing when there is none to be read.
std::optional<Dictionary> readDictionary(const std::filesystem::path& path);

/// Puts `bytes` in place of what is at `path`, by way of a temporary file beside it; the mode of a
/// file that was there is kept. False when that fails; `path` then holds what it held, and no
/// temporary file is left.
bool writeFileAtomically(const std::filesystem::path& path, std::string_view bytes);

}  // namespace quillet::standin
