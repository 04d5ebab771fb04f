// SPDX-License-Identifier: MIT
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <functional>
#include <optional>
#include <vector>

namespace quillet::test {

/// A system call that is about to be made: its number and its first arguments.
struct TracedCall {
    long number = 0;
    unsigned long arguments[4] = {};
};

/// A second process that stands before the first instruction of some work, and does as much of it
/// as it is told to. See ptrace(2).
class TracedWork {
public:
    /// The process is a fork of this one. What `work` throws ends it.
    explicit TracedWork(const std::function<void()>& work);
    /// Kills the process.
    ~TracedWork();
    TracedWork(const TracedWork&) = delete;
    TracedWork& operator=(const TracedWork&) = delete;

    /// Does so many more instructions; answers how many it were before the work was done.
    std::size_t step(std::size_t instructions);

    /// Goes on to the next system call; nothing when the work is done.
    std::optional<TracedCall> nextCall();

    /// The bytes there in the process's memory, as a number.
    long peek(unsigned long address) const;

private:
    /// Has it go on to its next stop; false when the work is done.
    bool resume(int request);

    pid_t process_;
    bool isInCall_ = false;
};

/// All system calls of the work.
std::vector<TracedCall> systemCallsOf(const std::function<void()>& work);

}  // namespace quillet::test
