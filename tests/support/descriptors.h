// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>

#include "tests/support/entries.h"

namespace quillet::test {

/// How many descriptors this process has open, and one more.
inline std::ptrdiff_t openDescriptors() { return entriesOf("/proc/self/fd"); }

}  // namespace quillet::test
