// SPDX-License-Identifier: MIT
#pragma once

#include <istream>
#include <optional>
#include <string>
#include <vector>

#include "platform/standin/device/trace.h"

namespace quillet {

/// A call of a trace that was read.
struct TracedCall {
    /// As in the trace; it lasts if its end was read.
    standin::TraceRecord record;
    /// In seconds, of a call that lasted.
    std::optional<double> duration;
};

/// A trace as it was written.
struct ReadTrace {
    /// What the first record says, in words: "springboard, process 12, iPhone6,1, 2026-…". Empty
    /// when there is none.
    std::string origin;
    /// In the order in which they were made.
    std::vector<TracedCall> calls;
};

/// The trace in lines of JSON that `stream` holds, called `name` in messages. Lines that are no
/// objects, such as the states that a command prints meanwhile, are passed over, and so is a last
/// one that is not whole. Throws std::runtime_error for an object that belongs to no trace, and
/// when there is no call at all.
ReadTrace readTrace(std::istream& stream, const std::string& name);

/// The same of a file, "-" for standard input. Throws std::runtime_error when it cannot be read.
ReadTrace readTrace(const std::string& file);

}  // namespace quillet
