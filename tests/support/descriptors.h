// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <filesystem>
#include <iterator>

namespace quillet::test {

/// How many descriptors this process has open, and one more.
inline std::ptrdiff_t openDescriptors() {
    return std::distance(std::filesystem::directory_iterator{"/proc/self/fd"}, {});
}

}  // namespace quillet::test
