// SPDX-License-Identifier: MIT
#include "program/default_root.h"

#include <cstdlib>

#include "program/usage_error.h"

namespace quillet {

namespace fs = std::filesystem;

namespace {

fs::path folderIn(const char* variable) {
    const char* const folder = std::getenv(variable);
    return folder == nullptr ? fs::path{} : fs::path{folder};
}

}  // namespace

fs::path defaultRoot() {
    if (const fs::path root = folderIn("QUILLET_ROOT"); !root.empty()) return root;
    if (const fs::path state = folderIn("XDG_STATE_HOME"); state.is_absolute()) {
        return state / "quillet/device";
    }
    if (const fs::path home = folderIn("HOME"); home.is_absolute()) {
        return home / ".local/state/quillet/device";
    }
    throw UsageError(
        "no --root given, and none of QUILLET_ROOT, XDG_STATE_HOME and HOME names a folder");
}

}  // namespace quillet
