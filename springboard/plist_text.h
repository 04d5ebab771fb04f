// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>

#include "platform/standin/plist/value.h"

namespace quillet {

/// Each value in a line of its own, or all in one line, without that line's end.
enum class Layout { lines, line };

/// A property list as JSON text. Of what JSON lacks, a date is a string such as
/// "2001-01-01T00:00:00Z", in whole seconds, data is a string in base64, an archive's identifier is
/// {"CF$UID": number}, and a number that is not finite is "nan", "+infinity" or "-infinity". In one
/// line numbers have the digits that toLine gives them, else all that they need to be read back.
/// Nothing when the text of what was read from a file would bring the memory above memoryLimit of
/// the file's size, which is known before any is taken.
std::optional<std::string> inJSON(const standin::Value& value, Layout layout);

/// What is no container, in the same words, but without quotation marks and escapes. Empty for
/// containers.
std::string inWords(const standin::Value& value);

}  // namespace quillet
