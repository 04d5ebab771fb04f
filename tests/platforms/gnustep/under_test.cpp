// SPDX-License-Identifier: MIT
#include "tests/support/under_test.h"

#include "tests/platforms/gnustep/bundle.h"

namespace quillet::test {

std::filesystem::path bundleUnderTest() { return QUILLET_GNUSTEP_BUNDLE; }

standin::OpenModule moduleOpener() { return gnustep::openBundle; }

}  // namespace quillet::test

/// What the runtime and Foundation themselves leave behind; that the bundle leaves nothing is told
/// by its counts.
extern "C" const char* __lsan_default_suppressions() {
    return "leak:libobjc.so\nleak:libgnustep-base.so\n";
}
