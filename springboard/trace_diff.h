// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "springboard/trace_reader.h"

namespace quillet {

/// The calls of a trace, a line for each, without what differs from run to run: times stand as
/// "...", tokens as "t1", "t2" in the order in which they appear. Calls in others are indented.
std::vector<std::string> comparableCalls(const ReadTrace& trace);

/// A line of one of two texts, or of both.
struct DiffLine {
    enum class Side { both, first, second };
    Side side = Side::both;
    std::string text;

    bool operator==(const DiffLine&) const = default;
};

/// All lines of both texts in an order that keeps that of each, with as many as can be found that
/// are of both; for texts that have little in common it is not looked for all.
std::vector<DiffLine> diffOf(const std::vector<std::string>& first,
                             const std::vector<std::string>& second);

/// The differing lines after "-" and "+", with up to `context` lines before and after them. Where
/// lines were left out, "@@ call 12" says which line of the first text follows. Empty when nothing
/// differs.
std::vector<std::string> hunksOf(const std::vector<DiffLine>& diff, std::size_t context);

}  // namespace quillet
