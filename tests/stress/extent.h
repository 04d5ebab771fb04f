// SPDX-License-Identifier: MIT
#pragma once

namespace quillet::test {

/// How much is tried: within a minute, in minutes, or in hours.
enum class Extent { brief, full, long_ };

}  // namespace quillet::test
