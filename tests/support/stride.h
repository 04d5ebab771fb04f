// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>

namespace quillet::test {

/// How far apart the places and values are that are tried: all of them, but fewer where a sanitizer
/// has each take long.
inline constexpr std::size_t stride = QUILLET_STRIDE;

}  // namespace quillet::test
