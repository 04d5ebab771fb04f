// SPDX-License-Identifier: MIT
#pragma once

#include <sys/types.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace quillet::test {

/// A system call that a supervised thread or process is about to make.
struct SupervisedCall {
    /// As in <sys/syscall.h>.
    int number = 0;
    /// Who makes it: a thread's id.
    pid_t caller = 0;
    std::array<std::uint64_t, 6> arguments = {};

    /// An argument that is a number of bytes.
    std::size_t size(std::size_t argument) const {
        return static_cast<std::size_t>(arguments.at(argument));
    }
    /// The first `size` bytes that an argument points at.
    std::string bytes(std::size_t argument, std::size_t size) const;
    /// The text that an argument points at, up to its end.
    std::string text(std::size_t argument) const;
    /// The path of what is open under the descriptor that is an argument.
    std::string file(std::size_t argument) const;
    /// The paths that the call names, in the order of its arguments.
    std::vector<std::string> paths() const;
};

/// What becomes of a system call.
struct Verdict {
    enum class Kind { isMade, fails, kills };

    Kind kind = Kind::isMade;
    /// What the call fails with, without being made.
    int error = 0;
};

using Judge = std::function<Verdict(const SupervisedCall&)>;

/// Runs `body` in a thread of its own and hands each of its system calls with these numbers, and
/// those of its children, to `judge` before it is made; see seccomp_unotify(2). The answer is the
/// body's. For a verdict that kills, the body must be a Child's.
int supervise(const std::vector<int>& numbers, const std::function<int()>& body,
              const Judge& judge);

/// Has the call numbered `place`, from 0 in the order in which they are made, meet its verdict, and
/// all others be made.
class Nth {
public:
    Nth(int place, Verdict verdict) : place_{place}, verdict_{verdict} {}

    Verdict operator()(const SupervisedCall& call);
    /// Whether there were that many calls.
    bool hasCome() const { return made_ > place_; }
    /// The number of the call that met the verdict.
    int number() const { return number_; }

private:
    int place_;
    Verdict verdict_;
    int made_ = 0;
    int number_ = 0;
};

/// The system calls that concern files: those that look, and those that change something.
std::vector<int> callsThatLook();
std::vector<int> callsThatChange();

/// Whether the call is one of those that ask about a file by its path or its descriptor.
bool isStat(int number);

}  // namespace quillet::test
