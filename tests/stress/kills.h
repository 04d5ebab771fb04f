// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>

#include "tests/stress/extent.h"
#include "tests/stress/tally.h"

namespace quillet::test {

/// Kills a flip, and the making of a phone, before and after each system call and at instants that
/// chance makes up, while another process watches and a third one writes. `folder` must be empty.
Tally tryKills(Extent extent, const std::filesystem::path& folder);

}  // namespace quillet::test
