// SPDX-License-Identifier: MIT
#pragma once

namespace quillet::test {

/// What a program under stress closes to tell its tracer something: no numbers of files.
inline constexpr int programBegins = -4201;
inline constexpr int allocationFails = -4202;

}  // namespace quillet::test
