// SPDX-License-Identifier: MIT
#include "tests/support/under_test.h"

#include "tests/platforms/macho/loader/module.h"

namespace quillet::test {

std::filesystem::path bundleUnderTest() { return QUILLET_MACHO_BUNDLE; }

standin::OpenModule moduleOpener() { return macho::openMachO; }

}  // namespace quillet::test
