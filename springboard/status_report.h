// SPDX-License-Identifier: MIT
#pragma once

#include "springboard/status.h"

namespace quillet {

/// Prints how a device stands, in words or as an object of the same members as the journal's.
/// Throws std::runtime_error when standard output cannot be written.
void report(const Status& status, bool json);

}  // namespace quillet
