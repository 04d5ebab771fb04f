// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "tests/stress/laboratory.h"

namespace quillet::test {

/// What is wrong with a run of the laboratory's and the device that it left; empty when all is as
/// it must be. A file that could not be written in time keeps what it held, so much a fault may do.
std::vector<std::string> wrongsOf(const Laboratory& laboratory, const Run& run);

}  // namespace quillet::test
