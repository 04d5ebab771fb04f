// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "platform/standin/device/trace.h"
#include "springboard/json.h"

namespace quillet {

/// A trace's record as an object: "t" in seconds, to the millionth, "op", "receiver" of a message,
/// "args", and "result" where there is one.
Json toJSON(const standin::TraceRecord& record);

}  // namespace quillet
