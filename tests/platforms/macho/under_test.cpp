// SPDX-License-Identifier: MIT
#include "tests/support/under_test.h"

#include "tests/platforms/macho/loader/module.h"

namespace quillet::test {

std::filesystem::path bundleUnderTest() { return QUILLET_MACHO_BUNDLE; }

standin::OpenModule moduleOpener() { return macho::openMachO; }

/// The preferences object's base class is C++ in this module, and its `init` is no message.
bool isReported(const std::string& call) { return call != "<NSObject> init"; }

}  // namespace quillet::test
