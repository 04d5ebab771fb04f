// SPDX-License-Identifier: MIT
#include "tests/support/stepped.h"

#include <signal.h>
#include <sys/ptrace.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <stdexcept>

#include "tests/support/child.h"

namespace quillet::test {

namespace {

constexpr int stopAtCall = SIGTRAP | 0x80;

/// What was printed here is not to be printed there again.
pid_t forkWithoutOutput() {
    std::fflush(nullptr);
    return fork();
}

/// The call that the process is stopped at, on its way into it or out of it.
__ptrace_syscall_info callOf(pid_t process) {
    __ptrace_syscall_info call = {};
    ptrace(PTRACE_GET_SYSCALL_INFO, process, sizeof call, &call);
    return call;
}

}  // namespace

Stepped::Stepped(const std::function<int()>& body) : process_{forkWithoutOutput()} {
    if (process_ < 0) throw std::runtime_error("no second process");
    if (process_ == 0) _exit(answerOf(body));
    if (!waitForReport()) throw std::runtime_error("the second process does not begin");
    ptrace(PTRACE_SETOPTIONS, process_, nullptr, PTRACE_O_TRACESYSGOOD);
    report_ = 0;
}

Stepped::~Stepped() {
    if (!isRunning_) return;
    kill(process_, SIGKILL);
    waitpid(process_, nullptr, 0);
}

void Stepped::begin() {
    ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
    raise(SIGSTOP);
}

bool Stepped::waitForReport() {
    if (waitpid(process_, &report_, 0) != process_) throw std::runtime_error("nobody to wait for");
    return isRunning_ = WIFSTOPPED(report_);
}

bool Stepped::step() {
    do {
        // A signal that stopped the process on its way to it is handed on.
        const std::intptr_t signal = WSTOPSIG(report_) == stopAtCall ? 0 : WSTOPSIG(report_);
        ptrace(PTRACE_SYSCALL, process_, nullptr, signal);
        if (!waitForReport()) return false;
    } while (WSTOPSIG(report_) != stopAtCall || callOf(process_).op != PTRACE_SYSCALL_INFO_ENTRY);
    return true;
}

std::uint64_t Stepped::call() const { return callOf(process_).entry.nr; }

void Stepped::send(int signal) { kill(process_, signal); }

int Stepped::end() {
    if (isRunning_) {
        ptrace(PTRACE_DETACH, process_, nullptr, nullptr);
        waitForReport();
    }
    return statusOf(report_);
}

}  // namespace quillet::test
