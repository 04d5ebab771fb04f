// SPDX-License-Identifier: MIT
#pragma once

#include <sys/types.h>

#include <functional>

namespace quillet::test {

/// A second process. It opens for itself whatever it shares with this one: a lock of a file belongs
/// to the open file, which a fork would share.
class Child {
public:
    /// Runs `body` there. Its answer is the process's exit status.
    explicit Child(const std::function<int()>& body);
    /// Kills the process if it still runs.
    ~Child();
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    void kill();
    bool isRunning();
    pid_t number() const { return process_; }
    /// The exit status; the negative number of the signal when one ended the process.
    int wait();

private:
    pid_t process_;
    int status_ = 0;
};

/// What `body` answers, as the exit status of a second process: 99, with a message on standard
/// error, when it throws.
int answerOf(const std::function<int()>& body);

/// How a process ended, of what waitpid(2) reports: the exit status, or the negative number of the
/// signal that ended it.
int statusOf(int report);

/// Lets processes that were forked after it was made wait for one another.
class Gate {
public:
    Gate();
    ~Gate();
    Gate(const Gate&) = delete;
    Gate& operator=(const Gate&) = delete;

    /// Lets one waiting process through.
    void open();
    /// False when nobody opened the gate in 20 s.
    bool pass();

private:
    int ends_[2];
};

}  // namespace quillet::test
