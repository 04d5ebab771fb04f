// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "platform/standin/device/trace.h"

namespace quillet::test {

/// The records of a trace that the host program wrote as JSON. A last line that is not whole is
/// left out. Throws std::runtime_error when another one is not.
std::vector<standin::TraceRecord> readTrace(const std::string& text);

}  // namespace quillet::test
