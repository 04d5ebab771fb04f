// SPDX-License-Identifier: MIT
#pragma once

#include <sys/types.h>

#include <array>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tests/stress/system_calls.h"
#include "tests/support/program.h"

namespace quillet::test {

/// A program that stops before and after each of its system calls. It dies with the object, and
/// with the process that made it. For one thread, and for x86-64.
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

    /// Starts the program; it stands before its first instruction.
    Traced(const std::filesystem::path& program, Start how);
    ~Traced();
    Traced(const Traced&) = delete;
    Traced& operator=(const Traced&) = delete;

    Stop next();

    /// The call that it stopped at.
    long call() const { return call_; }
    /// An argument of it, before it is made.
    std::uint64_t argument(std::size_t index) const { return arguments_[index]; }
    /// The file or files that the call is about; empty when it is about none.
    std::string target(const SystemCall& call) const;

    /// What comes of the call that it stopped before: an error, which takes the place of the call
    /// (but `close` is made all the same, as by the system), or one byte.
    void fail(int error);

    void kill();
    /// How it ended; see Outcome.
    int status() const { return status_; }

    /// The files that are open, and those that are mapped; once each, in order.
    std::vector<std::string> openFiles() const;
    std::vector<std::string> mappedFiles() const;

private:
    std::string text(std::uint64_t address) const;
    std::string fileNamed(std::uint64_t number) const;
    std::string inFolder(std::uint64_t folder, std::uint64_t path) const;
    /// False when it is not before a call that it stopped.
    bool readCall();
    void change(std::size_t place, std::size_t index, std::uint64_t value);
    void endCall();

    pid_t process_;
    bool isRunning_ = true;
    int signal_ = 0;
    int status_ = 0;
    long call_ = -1;
    std::array<std::uint64_t, 6> arguments_ = {};
    /// What the call that is under way shall answer; 0 for what it does.
    int error_ = 0;
    /// The place of a register that was changed, and what was there.
    std::optional<std::pair<std::size_t, std::uint64_t>> changed_;
};

}  // namespace quillet::test
