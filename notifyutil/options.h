// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "program/completion.h"

namespace quillet {

// What the program says of its options, all made from one table. What they do is in request.cpp.

std::string helpText();

/// What shells complete its command lines with.
OfferedCommand offers();

/// "--root", "--color", …
std::vector<std::string> longOptions();

}  // namespace quillet
