// SPDX-License-Identifier: MIT
#include "tests/stress/traced.h"

#include <signal.h>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <sys/user.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <fstream>
#include <set>
#include <stdexcept>

#include "tests/support/child.h"

namespace quillet::test {

namespace fs = std::filesystem;

namespace {

/// Where a call's number and its third argument stand, and its first.
constexpr auto numberPlace = offsetof(user_regs_struct, orig_rax);
constexpr auto answerPlace = offsetof(user_regs_struct, rax);
constexpr auto firstPlace = offsetof(user_regs_struct, rdi);
constexpr auto thirdPlace = offsetof(user_regs_struct, rdx);

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

std::string linkAt(const fs::path& path) {
    std::error_code error;
    return fs::read_symlink(path, error).string();
}

std::vector<std::string> listOf(const std::multiset<std::string>& names) {
    return {names.begin(), names.end()};
}

}  // namespace

Traced::Traced(const fs::path& program, Start how) {
    how.isTraced = true;
    process_ = start(program, how);
    int report = 0;
    if (waitpid(process_, &report, 0) != process_ || !WIFSTOPPED(report)) {
        throw std::runtime_error(program.string() + " cannot be traced");
    }
    ptrace(PTRACE_SETOPTIONS, process_, 0, PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL);
}

Traced::~Traced() { kill(); }

void Traced::kill() {
    if (!isRunning_) return;
    ::kill(process_, SIGKILL);
    int report = 0;
    do {
        if (waitpid(process_, &report, __WALL) != process_) break;
    } while (WIFSTOPPED(report));
    status_ = statusOf(report);
    isRunning_ = false;
}

Traced::Stop Traced::next() {
    for (;;) {
        ptrace(PTRACE_SYSCALL, process_, 0, signal_);
        int report = 0;
        if (!waitPatiently(process_, report)) return Stop::late;
        if (!WIFSTOPPED(report)) {
            isRunning_ = false;
            status_ = statusOf(report);
            return Stop::end;
        }
        const bool isCall = WSTOPSIG(report) == (SIGTRAP | 0x80);
        signal_ = isCall ? 0 : WSTOPSIG(report);
        if (!isCall) continue;
        if (readCall()) return Stop::before;
        endCall();
        return Stop::after;
    }
}

bool Traced::readCall() {
    __ptrace_syscall_info call = {};
    ptrace(PTRACE_GET_SYSCALL_INFO, process_, sizeof call, &call);
    if (call.op != PTRACE_SYSCALL_INFO_ENTRY) return false;
    call_ = static_cast<long>(call.entry.nr);
    std::ranges::copy(call.entry.args, arguments_.begin());
    error_ = 0;
    return true;
}

void Traced::fail(int error) {
    if (error == oneByte) {
        if (argument(2) > 1) change(thirdPlace, 2, 1);
    } else if (call_ == SYS_brk) {
        // Asked for no place it tells where it is: that is how it fails.
        change(firstPlace, 0, 0);
    } else {
        error_ = error;
        if (call_ != SYS_close) ptrace(PTRACE_POKEUSER, process_, numberPlace, -1L);
    }
}

/// Until the call is over: programs count on finding their registers as they were.
void Traced::change(std::size_t place, std::size_t index, std::uint64_t value) {
    ptrace(PTRACE_POKEUSER, process_, place, value);
    changed_ = {place, argument(index)};
}

void Traced::endCall() {
    if (changed_) ptrace(PTRACE_POKEUSER, process_, changed_->first, changed_->second);
    changed_.reset();
    if (error_ != 0) ptrace(PTRACE_POKEUSER, process_, answerPlace, long{-error_});
    error_ = 0;
}

std::string Traced::text(std::uint64_t address) const {
    std::string text;
    char byte = 0;
    const iovec here = {&byte, 1};
    for (; text.size() < 4096; ++address, text += byte) {
        const iovec there = {reinterpret_cast<void*>(address), 1};
        if (process_vm_readv(process_, &here, 1, &there, 1, 0) != 1 || byte == 0) break;
    }
    return text;
}

std::string Traced::fileNamed(std::uint64_t number) const {
    const int file = static_cast<int>(number);
    return linkAt("/proc/" + std::to_string(process_) + "/fd/" + std::to_string(file));
}

std::string Traced::inFolder(std::uint64_t folder, std::uint64_t path) const {
    return fs::path{fileNamed(folder)} / text(path);
}

std::string Traced::target(const SystemCall& call) const {
    using Target = SystemCall::Target;
    switch (call.target) {
        case Target::path:
            return text(argument(0));
        case Target::pathIn:
            return inFolder(argument(0), argument(1));
        case Target::paths:
            return text(argument(0)) + " " + text(argument(1));
        case Target::pathsIn:
            return inFolder(argument(0), argument(1)) + " " + inFolder(argument(2), argument(3));
        case Target::file:
            return fileNamed(argument(0));
        case Target::mappedFile:
            return fileNamed(argument(4));
        default:
            return "";
    }
}

std::vector<std::string> Traced::openFiles() const {
    std::multiset<std::string> names;
    const fs::path folder = "/proc/" + std::to_string(process_) + "/fd";
    for (const auto& entry : fs::directory_iterator{folder}) names.insert(linkAt(entry.path()));
    return listOf(names);
}

std::vector<std::string> Traced::mappedFiles() const {
    std::multiset<std::string> names;
    std::ifstream maps{"/proc/" + std::to_string(process_) + "/maps"};
    for (std::string line; std::getline(maps, line);) {
        const std::size_t slash = line.find('/');
        if (slash != std::string::npos) names.insert(line.substr(slash));
    }
    return listOf(names);
}

}  // namespace quillet::test
