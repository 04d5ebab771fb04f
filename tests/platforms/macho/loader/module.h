// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <memory>

#include "platform/standin/runtime/module.h"

namespace quillet::macho {

/// The opener for modules in the device's file format and this machine's architecture; for
/// standin::DeviceOptions. Their imports are bound to the stand-in. Throws BundleError.
std::unique_ptr<standin::Module> openMachO(const std::filesystem::path& path);

}  // namespace quillet::macho
