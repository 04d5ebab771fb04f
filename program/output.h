// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace quillet {

// Standard output. Both throw std::runtime_error when it cannot be written.

/// Hands on what was printed.
void finishOutput();

/// Prints `text`, and hands it on.
void print(const std::string& text);

}  // namespace quillet
