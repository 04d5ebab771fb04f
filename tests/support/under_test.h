// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>

#include "platform/standin/runtime/module.h"

namespace quillet::test {

// What a test program of the behaviour suite is about. Each program defines these for its own
// build of the bundle.

/// The bundle folder.
std::filesystem::path bundleUnderTest();

/// What opens its module.
standin::OpenModule moduleOpener();

}  // namespace quillet::test
