// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <utility>

#include "platform/standin/device/trace.h"
#include "springboard/json.h"
#include "springboard/trace_origin.h"

namespace quillet {

/// A trace in the array form of the trace-event format, which viewers of traces open: events for
/// the begin and the end of each call, on one track for a process. Times are those of the wall
/// clock, in microseconds, so that the traces of several processes can be joined.
class ChromeTrace {
public:
    explicit ChromeTrace(TraceOrigin origin) : origin_{std::move(origin)} {}

    // Events: objects, one in a line, with ",\n" between them.

    /// Names the track.
    std::string name() const;
    /// A call begins, and ends at once unless it lasts.
    std::string begin(const standin::TraceRecord& record);
    std::string end(const standin::TraceRecord& record, double duration);

private:
    Json eventOf(const char* phase, const standin::TraceRecord& record, double time);

    TraceOrigin origin_;
    /// Of the last event: none is before it, however two of them are rounded.
    std::int64_t last_ = 0;
};

}  // namespace quillet
