// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <filesystem>
#include <iterator>

namespace quillet::test {

/// How many names lie in a folder.
inline std::ptrdiff_t entriesOf(const std::filesystem::path& folder) {
    return std::distance(std::filesystem::directory_iterator{folder}, {});
}

}  // namespace quillet::test
