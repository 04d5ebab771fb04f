// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <stdexcept>
#include <vector>

#include "tests/model/world.h"

namespace quillet::test {

/// A trace is not what the model makes of it. The text names the place, and both.
class Mismatch : public std::runtime_error {
public:
    using runtime_error::runtime_error;
};

/// A trace ends before the model does.
class TraceEnds : public Mismatch {
public:
    using Mismatch::Mismatch;
};

/// The world as a trace tells it: each call must be the next of the trace, and is answered as
/// there.
class TraceWorld : public World {
public:
    explicit TraceWorld(const std::vector<standin::TraceRecord>& trace) : trace_{trace} {}

    /// Throws Mismatch.
    Reply call(const ExpectedCall& call) override;
    bool callsObserver() override { return isNext("sharedPanel"); }
    bool takesActivate() override { return isNext("activate:"); }

    /// Goes back to the beginning, of what may be another trace by now.
    void restart() { next_ = 0; }

    bool isAtEnd() const { return next_ == trace_.size(); }
    /// How many calls were made.
    std::size_t calls() const { return next_; }

private:
    bool isNext(const char* operation) const;

    const std::vector<standin::TraceRecord>& trace_;
    std::size_t next_ = 0;
};

}  // namespace quillet::test
