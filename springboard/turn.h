// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <functional>

#include "platform/standin/files/descriptor.h"

namespace quillet {

/// A host's turn with a device, from which all other hosts are kept until the object goes or the
/// process dies: the kernel then ends it. See flock(2).
class Turn {
public:
    /// Waits for as long as another process has the turn of `file`, which is made when it is absent
    /// and which only its owner can open. Calls `beforeWaiting` first if it has to wait. Throws
    /// std::system_error when there are no turns to be had. A file that was replaced while the
    /// process waited gives no turn: it waits for the one that is there.
    Turn(const std::filesystem::path& file, const std::function<void()>& beforeWaiting);

    /// Whether somebody has the turn of `file`. Asking takes none.
    static bool isTaken(const std::filesystem::path& file);

private:
    standin::Descriptor file_;
};

}  // namespace quillet
