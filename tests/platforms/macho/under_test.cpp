// SPDX-License-Identifier: MIT
#include "tests/support/under_test.h"

#include "tests/platforms/macho/device_bundle.h"
#include "tests/platforms/macho/loader/module.h"

namespace quillet::test {

std::filesystem::path bundleUnderTest() { return deviceBundle(); }

standin::OpenModule moduleOpener() { return macho::openMachO; }

}  // namespace quillet::test
