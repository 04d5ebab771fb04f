// SPDX-License-Identifier: MIT
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <functional>

namespace quillet::test {

/// A second process that is stopped before each of its system calls. See ptrace(2).
class Stepped {
public:
    /// Runs `body` there. Its answer is the process's exit status.
    explicit Stepped(const std::function<int()>& body);
    /// Kills the process if it still runs.
    ~Stepped();
    Stepped(const Stepped&) = delete;
    Stepped& operator=(const Stepped&) = delete;

    /// For `body`: from here on the process is stopped.
    static void begin();

    /// Lets the process go on to its next system call. False when it ended on the way.
    bool step();
    /// The number of the call that step() has led to. See syscalls(2).
    std::uint64_t call() const;
    /// What comes to a process that is stopped comes to it before the call.
    void send(int signal);
    /// Lets the process go on to its end. The exit status; the negative number of the signal when
    /// one ended it.
    int end();

private:
    /// Whether the process is still there when it has next something to report.
    bool waitForReport();

    pid_t process_;
    int report_ = 0;
    bool isRunning_ = true;
};

}  // namespace quillet::test
