// SPDX-License-Identifier: MIT
#include "tests/support/under_test.h"

namespace quillet::test {

std::filesystem::path bundleUnderTest() { return QUILLET_BUNDLE; }

standin::OpenModule moduleOpener() { return standin::openSharedObject; }

}  // namespace quillet::test
