// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>

namespace quillet::test {

/// The time of this machine, in seconds since some moment; it only moves on.
inline double realNow() {
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration<double>(now).count();
}

}  // namespace quillet::test
