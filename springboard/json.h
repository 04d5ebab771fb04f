// SPDX-License-Identifier: MIT
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

namespace quillet {

/// What the program prints as JSON; an object keeps its members in the order in which they came.
using Json = nlohmann::ordered_json;

/// `value` in one line, without the line's end, a blank after each comma and colon. Of a text that
/// is not UTF-8, U+FFFD stands for each byte beyond ASCII. A number that is not finite is null. One
/// that single precision holds has no more digits than single precision needs to read it back.
std::string toLine(const Json& value);

}  // namespace quillet
