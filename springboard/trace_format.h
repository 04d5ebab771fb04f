// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "platform/standin/device/trace.h"
#include "springboard/json.h"

namespace quillet {

/// How the lines of a trace look.
enum class TraceFormat { json, text };

/// A trace's record as an object: "t" in seconds, to the millionth, "op", "receiver" of a message,
/// "args", and "result" where there is one.
Json toJSON(const standin::TraceRecord& record);

/// A trace's record in a line for people, without the line's end: the time in seconds, then a
/// message with each part of its name before its argument, or a call of a function, and " = " and
/// the result where there is one. Arguments stand as in JSON.
std::string toText(const standin::TraceRecord& record);

}  // namespace quillet
