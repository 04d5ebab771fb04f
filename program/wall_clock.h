// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>

namespace quillet {

// The clock that people read, in microseconds since 1970-01-01T00:00:00Z.

inline constexpr std::int64_t microsecondsPerSecond = 1000000;

std::int64_t timeNow();

/// "2026-11-22T02:15:20.456789Z"
std::string isoTime(std::int64_t microseconds);

/// "02:15:20.456", in the time zone of whoever reads it.
std::string timeOfDay(std::int64_t microseconds);

/// "2026-11-22", likewise.
std::string dayOf(std::int64_t microseconds);

}  // namespace quillet
