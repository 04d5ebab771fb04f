// SPDX-License-Identifier: MIT
#pragma once

#include <sys/types.h>

#include <chrono>
#include <string>

namespace quillet {

/// Where a trace comes from: what its first record says.
struct TraceOrigin {
    /// The wall clock when the trace's own clock stood at 0.
    std::chrono::system_clock::time_point start;
    pid_t process = 0;
    std::string program;
    /// Of the device.
    std::string model;
    /// The words of --host.
    std::string host;
};

/// A point in time as in "2026-11-22T01:53:19.123Z".
std::string wallClockText(std::chrono::system_clock::time_point time);

}  // namespace quillet
