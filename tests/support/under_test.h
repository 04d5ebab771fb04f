// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <string>

#include "platform/standin/runtime/module.h"

namespace quillet::test {

// What a test program of the behaviour suite is about. Each program defines these for its own
// build of the bundle.

/// The bundle folder.
std::filesystem::path bundleUnderTest();

/// What opens its module.
standin::OpenModule moduleOpener();

/// Whether the platform that the module was built for reports a call, such as "notify_post" or
/// "NSMutableDictionary init". Our own platform reports all.
bool isReported(const std::string& call);

}  // namespace quillet::test
