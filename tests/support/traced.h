// SPDX-License-Identifier: MIT
#pragma once

#include <sys/types.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <vector>

#include "tests/support/program.h"

namespace quillet::test {

/// A second process that stops before and after each of its system calls, or between two
/// instructions. It dies with the object, and with the process that made it. For one thread. See
/// ptrace(2).
class Traced {
public:
    enum class Stop {
        /// Before a call.
        before,
        /// After a call.
        after,
        /// It has ended.
        end,
        /// It has not come to a stop within `patience`.
        late,
    };

    /// How long the way from one stop to the next may take, in seconds.
    static constexpr unsigned patience = 10;

    /// A fork of this process, which stops where `body` calls begin(). The answer of `body` is its
    /// exit status.
    explicit Traced(const std::function<int()>& body);
    /// A program; it stands before its first instruction.
    Traced(const std::filesystem::path& program, Start how);
    ~Traced();
    Traced(const Traced&) = delete;
    Traced& operator=(const Traced&) = delete;

    /// For `body`.
    static void begin();

    /// Goes on to where the next call begins, or this one ends. What signals came is handed on.
    Stop next();
    /// Goes on to the next call. False when it ended on the way.
    bool nextCall();
    /// Does so many more instructions; answers how many it were when it ended before.
    std::size_t step(std::size_t instructions);

    /// The call that it stopped at; see syscalls(2).
    long call() const { return call_; }
    /// An argument of it, before it is made.
    std::uint64_t argument(std::size_t index) const { return arguments_.at(index); }
    /// What it gave, after it was made: the negative number of an error.
    long answer() const { return answer_; }
    /// The bytes there in its memory, as a number.
    long peek(std::uint64_t address) const;

    /// What comes to a process that is stopped comes to it when it goes on.
    void send(int signal) const;
    void kill();
    /// Lets it go on to its end. How that was; see Outcome.
    int end();
    int status() const { return status_; }

protected:
    pid_t process() const { return process_; }

private:
    void start();
    /// False when it has ended.
    bool takeReport(int report);
    /// Whether it is before a call that it stopped.
    bool readCall();

    pid_t process_;
    bool isRunning_ = true;
    /// What it stopped for and is to meet.
    int signal_ = 0;
    int status_ = 0;
    long call_ = -1;
    long answer_ = 0;
    std::array<std::uint64_t, 6> arguments_ = {};
};

/// A fork of this process that stands before the first instruction of some work.
Traced traced(const std::function<void()>& work);

/// The numbers of all system calls of the work.
std::vector<long> systemCallsOf(const std::function<void()>& work);

}  // namespace quillet::test
