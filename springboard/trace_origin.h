// SPDX-License-Identifier: MIT
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <string>

namespace quillet {

/// Where a trace comes from: what its first record says.
struct TraceOrigin {
    /// The wall clock when the trace's own clock stood at 0, in microseconds since
    /// 1970-01-01T00:00:00Z.
    std::int64_t start = 0;
    pid_t process = 0;
    std::string program;
    /// Of the device.
    std::string model;
    /// The words of --host.
    std::string host;
};

}  // namespace quillet
