// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>

namespace quillet::standin {

/// The one place where time comes from, in seconds since the clock was made.
class Clock {
public:
    enum class Kind {
        real,
        /// Stands still but for advanceTo: waiting takes no time.
        virtualTime,
    };

    explicit Clock(Kind kind) : kind_{kind} {}

    bool isVirtual() const { return kind_ == Kind::virtualTime; }
    double now() const;

    /// Blocks until `time`, or moves a virtual clock there. Times past are ignored.
    void advanceTo(double time);

private:
    Kind kind_;
    double virtualNow_ = 0;
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

}  // namespace quillet::standin
