// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "tests/stress/extent.h"
#include "tests/stress/laboratory.h"

namespace quillet::test {

/// The commands that write; when brief, those that between them do all that the others do.
std::vector<Command> commandsThatWrite(Extent extent);

}  // namespace quillet::test
