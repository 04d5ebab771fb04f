// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>

#include "platform/standin/device/device.h"

namespace quillet::test {

/// What a process holds: memory that was allocated, in bytes, open files, mappings, and what the
/// stand-in gave out.
struct Holdings {
    std::size_t memory;
    std::ptrdiff_t descriptors;
    std::ptrdiff_t mappings;
    std::size_t tokens;
    std::size_t observers;
    int instances;
};

/// Those of this process, whose device is `device`.
Holdings holdingsWith(const standin::Device& device);

}  // namespace quillet::test
