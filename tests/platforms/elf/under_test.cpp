// SPDX-License-Identifier: MIT
#include "tests/support/under_test.h"

#include <cstdlib>

namespace quillet::test {

/// This build's, or what $QUILLET_ELF_BUNDLE names.
std::filesystem::path bundleUnderTest() {
    const char* const given = std::getenv("QUILLET_ELF_BUNDLE");
    return given == nullptr ? QUILLET_BUNDLE_UNDER_TEST : given;
}

standin::OpenModule moduleOpener() { return standin::openSharedObject; }

}  // namespace quillet::test
