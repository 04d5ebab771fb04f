// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <exception>
#include <string>

namespace quillet {

inline constexpr std::int64_t microsecondsPerSecond = 1000000;

/// What ends a command with 1 when all that there is to say of it was said.
class AlreadySaid : public std::exception {};

/// `microseconds` since 1970-01-01T00:00:00Z as "2026-11-22T02:15:20.456789Z".
std::string isoTime(std::int64_t microseconds);

/// The time now, in such microseconds.
std::int64_t timeNow();

/// Says something on standard error: `text` behind the program's name, or, as JSON, an object with
/// "time", "pid", "event" and "message".
void sayError(bool json, const std::string& text);

/// The same for what is no error, without the program's name.
void sayNote(bool json, const std::string& text);

}  // namespace quillet
