// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>

#include "tests/stress/extent.h"
#include "tests/stress/tally.h"

namespace quillet::test {

/// Has two hosts, and eight, flip one device at once, again and again. `folder` must be empty.
Tally tryTurns(Extent extent, const std::filesystem::path& folder);

}  // namespace quillet::test
