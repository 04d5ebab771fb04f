// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>

namespace quillet {

/// The root of the device that is meant when a command line names none: $QUILLET_ROOT, or else
/// quillet/device below $XDG_STATE_HOME or ~/.local/state. Throws UsageError when the environment
/// names none of them.
std::filesystem::path defaultRoot();

}  // namespace quillet
