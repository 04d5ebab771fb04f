// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace quillet::standin {

/// A file that takes far more to read or to write than its size suggests, unless it is bounded.
struct HostileShape {
    std::string name;
    std::string bytes;
};

/// All of them, about `size` bytes each, at least 10000.
std::vector<HostileShape> hostileShapes(std::size_t size);

}  // namespace quillet::standin
