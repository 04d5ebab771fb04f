// SPDX-License-Identifier: MIT
#include "tests/support/traced_work.h"

#include <signal.h>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <limits>
#include <stdexcept>

namespace quillet::test {

namespace {

/// What a stop for a system call is reported as, to be told from other traps.
constexpr int callStop = SIGTRAP | 0x80;

[[noreturn]] void become(const std::function<void()>& work) {
    ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
    const pid_t self = getpid();
    // One system call and no more, which raise(3) is not.
    syscall(SYS_kill, self, SIGSTOP);
    work();
    for (;;) syscall(SYS_kill, self, SIGSTOP);
}

/// The signal that stopped the process; 0 when it ended.
int nextStop(pid_t process) {
    int report = 0;
    if (waitpid(process, &report, 0) != process) throw std::runtime_error("nobody to trace");
    return WIFSTOPPED(report) ? WSTOPSIG(report) : 0;
}

}  // namespace

TracedWork::TracedWork(const std::function<void()>& work) : process_{fork()} {
    if (process_ < 0) throw std::runtime_error("no second process");
    if (process_ == 0) become(work);
    constexpr long options = PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL;
    if (nextStop(process_) != SIGSTOP ||
        ptrace(static_cast<__ptrace_request>(PTRACE_SETOPTIONS), process_, nullptr, options) != 0) {
        throw std::runtime_error("it cannot be traced");
    }
}

TracedWork::~TracedWork() {
    ::kill(process_, SIGKILL);
    waitpid(process_, nullptr, 0);
}

bool TracedWork::resume(int request) {
    if (ptrace(static_cast<__ptrace_request>(request), process_, nullptr, nullptr) != 0) {
        throw std::runtime_error("it does not go on");
    }
    const int signal = nextStop(process_);
    if (signal != SIGTRAP && signal != callStop && signal != SIGSTOP) {
        throw std::runtime_error("it ended by itself");
    }
    return signal != SIGSTOP;
}

std::size_t TracedWork::step(std::size_t instructions) {
    std::size_t done = 0;
    while (done < instructions && resume(PTRACE_SINGLESTEP)) ++done;
    return done;
}

std::optional<TracedCall> TracedWork::nextCall() {
    if (isInCall_ && !resume(PTRACE_SYSCALL)) return {};
    isInCall_ = true;
    if (!resume(PTRACE_SYSCALL)) return {};
    __ptrace_syscall_info info = {};
    ptrace(static_cast<__ptrace_request>(PTRACE_GET_SYSCALL_INFO), process_, sizeof info, &info);
    TracedCall call{static_cast<long>(info.entry.nr), {}};
    std::copy_n(info.entry.args, std::size(call.arguments), call.arguments);
    return call;
}

long TracedWork::peek(unsigned long address) const {
    return ptrace(PTRACE_PEEKDATA, process_, address, nullptr);
}

std::vector<TracedCall> systemCallsOf(const std::function<void()>& work) {
    TracedWork traced{work};
    std::vector<TracedCall> calls;
    while (const auto call = traced.nextCall()) calls.push_back(*call);
    // The last is the one that stops.
    calls.resize(std::max<std::size_t>(calls.size(), 1) - 1);
    return calls;
}

}  // namespace quillet::test
