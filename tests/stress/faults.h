// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>

#include "tests/stress/extent.h"
#include "tests/stress/tally.h"

namespace quillet::test {

/// Has every system call of every command that writes fail, with each error that it has, at every
/// place, once and for ever; every allocation likewise. When long, two faults by chance in one run
/// besides. `folder` must be empty.
Tally tryFaults(Extent extent, const std::filesystem::path& folder);

}  // namespace quillet::test
