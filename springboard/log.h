// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "springboard/options.h"

namespace quillet {

/// Which lines of a journal are printed.
struct LogChoice {
    /// Go on with what is added, until interrupted.
    bool follows = false;
    /// Only those of the last so many microseconds.
    std::optional<std::int64_t> last;
};

/// Prints what has happened to the device. Throws std::runtime_error when there is none, it goes,
/// or standard output cannot be written.
void printLog(const Options& options, const LogChoice& choice);

/// "90", "90s", "5m", "2h" or "1d" in microseconds. Throws UsageError for anything else.
std::int64_t duration(std::string_view word);

}  // namespace quillet
