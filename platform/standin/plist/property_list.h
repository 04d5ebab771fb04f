// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "platform/standin/plist/fault.h"
#include "platform/standin/plist/tape_builder.h"
#include "platform/standin/plist/value.h"

namespace quillet::standin {

enum class Form { xml, binary };

/// The form that bytes are in, as far as their beginning tells: what is not binary is XML.
Form formOf(std::string_view bytes);

/// What is larger counts as malformed.
inline constexpr std::size_t maxFileSize = std::size_t{1} << 30U;

/// The value in `bytes`, in the XML or the binary form; nothing when they are malformed, which
/// `fault` then tells unless it is null. Time and memory are bounded, whatever the bytes hold:
/// 10 ms and 200 ns for each of them, memoryLimit.
std::optional<Value> readPropertyList(std::string bytes, Fault* fault = nullptr);
std::optional<Value> readXMLPropertyList(std::string bytes, Fault* fault = nullptr);
std::optional<Value> readBinaryPropertyList(std::string bytes, Fault* fault = nullptr);

/// What a property list of `size` bytes may take in memory, from reading it to writing it again.
constexpr std::size_t memoryLimit(std::size_t size) { return 64 * size + (std::size_t{4} << 20U); }

/// `value`, whose strings are UTF-8. It reads back as an equal value, but that in the XML form a
/// date loses its fraction of a second, and {"CF$UID": number} becomes an identifier.
std::string writePropertyList(const Value& value, Form form = Form::xml);

/// The same for a value that was read from a file, whatever that held; nothing when what is written
/// would bring the memory above memoryLimit of the file's size, which is known before any is taken.
std::optional<std::string> rewritePropertyList(const Value& value, Form form = Form::xml);

}  // namespace quillet::standin
