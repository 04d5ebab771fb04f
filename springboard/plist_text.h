// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "platform/standin/plist/value.h"

namespace quillet {

/// A property list as JSON text, a line for each value. Of what JSON lacks, a date is a string such
/// as "2001-01-01T00:00:00Z", in whole seconds, data is a string in base64, an archive's identifier
/// is {"CF$UID": number}, and a number that is not finite is "nan", "+infinity" or "-infinity".
/// Nothing when the text is longer than `limit`, in bytes.
std::optional<std::string> inJSON(const standin::Value& value, std::size_t limit);

/// What is no container, in the same words, but without quotation marks and escapes. Empty for
/// containers.
std::string inWords(const standin::Value& value);

}  // namespace quillet
