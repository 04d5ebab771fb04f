// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "springboard/trace_reader.h"

namespace quillet {

/// A trace laid out on a line, in columns: where nothing happens the line is cut, and the bursts of
/// calls between the cuts have what that leaves. What does not fit into one line goes on in the
/// next. Times are in seconds since the first call.
struct Timeline {
    /// Something that is worth a word.
    struct Mark {
        double time = 0;
        std::size_t column = 0;
        bool isInWait = false;
        std::string label;
    };
    /// Calls that follow one another, true to a scale of their own.
    struct Burst {
        double begin = 0;
        double end = 0;
        std::size_t column = 0;
        std::size_t width = 0;
        /// The columns of its calls.
        std::vector<std::size_t> calls;
        std::vector<Mark> marks;
        /// How long nothing happened behind it, where the line is cut; 0 behind the last one.
        double gap = 0;
    };
    using Line = std::vector<Burst>;

    /// Where the trace comes from, in words. May be empty.
    std::string origin;
    std::size_t calls = 0;
    double duration = 0;
    /// How much of that was waited, without what waited inside.
    double waited = 0;
    /// The whole of it true to scale: the columns in which something was called.
    std::vector<bool> strip;
    std::vector<Line> lines;
};

/// What a cut takes, in columns.
inline constexpr std::size_t cutWidth = 10;

/// Lays a trace with at least one call out in lines of `columns`, at least 20.
Timeline layOut(const ReadTrace& trace, std::size_t columns);

/// "500 ms", "4.2 ms", "12 s": in at most 6 characters up to a day.
std::string shortTime(double seconds);

/// For a terminal of 80 columns, if it was laid out in timelineColumns.
std::string timelineText(const Timeline& timeline, bool isColored);

/// A picture that stands by itself, in light and dark.
std::string timelineSVG(const Timeline& timeline);

/// What leaves room for a word behind the last column.
inline constexpr std::size_t timelineColumns = 54;

}  // namespace quillet
