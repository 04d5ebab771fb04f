// SPDX-License-Identifier: MIT
#include "tests/support/under_test.h"

namespace quillet::test {

std::filesystem::path bundleUnderTest() { return QUILLET_BUNDLE_UNDER_TEST; }

standin::OpenModule moduleOpener() { return standin::openSharedObject; }

}  // namespace quillet::test
