// SPDX-License-Identifier: MIT
#include "tests/support/traced.h"

#include <signal.h>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <stdexcept>
#include <utility>

#include "tests/support/child.h"

namespace quillet::test {

namespace {

/// What a stop for a system call is reported as, to be told from other traps.
constexpr int callStop = SIGTRAP | 0x80;

/// What was printed here is not to be printed there again.
pid_t forkWithoutOutput() {
    std::fflush(nullptr);
    return fork();
}

pid_t startTraced(const std::filesystem::path& program, Start how) {
    how.isTraced = true;
    return start(program, how);
}

void onAlarm(int /*signal*/) {}

/// Waits for a process as long as there is patience; false when that is over.
bool waitPatiently(pid_t process, int& report) {
    struct sigaction action = {};
    action.sa_handler = onAlarm;
    sigaction(SIGALRM, &action, nullptr);
    alarm(Traced::patience);
    const pid_t found = waitpid(process, &report, __WALL);
    alarm(0);
    return found == process;
}

}  // namespace

Traced::Traced(const std::function<int()>& body) : process_{forkWithoutOutput()} {
    if (process_ == 0) _exit(answerOf(body));
    start();
}

Traced::Traced(const std::filesystem::path& program, Start how)
    : process_{startTraced(program, std::move(how))} {
    start();
}

void Traced::start() {
    constexpr long options = PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL;
    int report = 0;
    if (process_ < 0 || waitpid(process_, &report, 0) != process_ || !takeReport(report) ||
        ptrace(PTRACE_SETOPTIONS, process_, nullptr, options) != 0) {
        throw std::runtime_error("a second process cannot be traced");
    }
    signal_ = 0;
}

Traced::~Traced() { kill(); }

void Traced::begin() {
    ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
    // One system call and no more, which raise(3) is not.
    syscall(SYS_kill, getpid(), SIGSTOP);
}

bool Traced::takeReport(int report) {
    isRunning_ = WIFSTOPPED(report);
    if (!isRunning_) status_ = statusOf(report);
    signal_ = isRunning_ && WSTOPSIG(report) != callStop ? WSTOPSIG(report) : 0;
    return isRunning_;
}

Traced::Stop Traced::next() {
    for (;;) {
        ptrace(PTRACE_SYSCALL, process_, nullptr, long{signal_});
        int report = 0;
        if (!waitPatiently(process_, report)) return Stop::late;
        if (!takeReport(report)) return Stop::end;
        if (signal_ == 0) return readCall() ? Stop::before : Stop::after;
    }
}

bool Traced::readCall() {
    __ptrace_syscall_info call = {};
    ptrace(PTRACE_GET_SYSCALL_INFO, process_, sizeof call, &call);
    if (call.op == PTRACE_SYSCALL_INFO_EXIT) answer_ = static_cast<long>(call.exit.rval);
    if (call.op != PTRACE_SYSCALL_INFO_ENTRY) return false;
    call_ = static_cast<long>(call.entry.nr);
    std::ranges::copy(call.entry.args, arguments_.begin());
    return true;
}

bool Traced::nextCall() {
    for (;;) {
        const Stop stop = next();
        if (stop == Stop::late) throw std::runtime_error("a second process does not go on");
        if (stop != Stop::after) return stop == Stop::before;
    }
}

std::size_t Traced::step(std::size_t instructions) {
    for (std::size_t done = 0; done < instructions; ++done) {
        ptrace(PTRACE_SINGLESTEP, process_, nullptr, long{signal_});
        int report = 0;
        if (waitpid(process_, &report, 0) != process_ || !takeReport(report)) return done;
        if (signal_ == SIGTRAP) signal_ = 0;
    }
    return instructions;
}

long Traced::peek(std::uint64_t address) const {
    return ptrace(PTRACE_PEEKDATA, process_, address, nullptr);
}

void Traced::send(int signal) const { ::kill(process_, signal); }

void Traced::kill() {
    if (!isRunning_) return;
    send(SIGKILL);
    int report = 0;
    do {
        if (waitpid(process_, &report, __WALL) != process_) break;
    } while (takeReport(report));
}

int Traced::end() {
    if (isRunning_) {
        ptrace(PTRACE_DETACH, process_, nullptr, long{signal_});
        int report = 0;
        if (waitpid(process_, &report, 0) == process_) takeReport(report);
    }
    return status_;
}

Traced traced(const std::function<void()>& work) {
    return Traced{[&]() -> int {
        Traced::begin();
        work();
        // At once, and with no call that a sanitizer makes before it.
        for (;;) syscall(SYS_exit_group, 0);
    }};
}

std::vector<long> systemCallsOf(const std::function<void()>& work) {
    Traced process = traced(work);
    std::vector<long> calls;
    while (process.nextCall()) calls.push_back(process.call());
    // The last is the one that ends the process.
    calls.pop_back();
    return calls;
}

}  // namespace quillet::test
