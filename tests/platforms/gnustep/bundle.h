// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <memory>

#include "platform/standin/runtime/module.h"

namespace quillet::gnustep {

/// Has Foundation load the bundle that the module at `path` lies in, and registers its principal
/// class. Throws BundleError.
std::unique_ptr<standin::Module> openBundle(const std::filesystem::path& path);

}  // namespace quillet::gnustep
