// SPDX-License-Identifier: MIT
#include "tests/support/supervisor.h"

#include <fcntl.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <poll.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <filesystem>
#include <future>
#include <stdexcept>
#include <thread>

namespace quillet::test {

namespace fs = std::filesystem;

namespace {

/// Has the kernel ask about these calls of this thread from now on. The answer is the descriptor
/// at which it asks, -1 when it cannot.
int installFilter(const std::vector<int>& numbers) {
    std::vector<sock_filter> program = {
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr))};
    for (const int number : numbers) {
        program.push_back(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, std::uint32_t(number), 0, 1));
        program.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_USER_NOTIF));
    }
    program.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW));
    sock_fprog filter = {static_cast<unsigned short>(program.size()), program.data()};
    if (prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0) return -1;
    return static_cast<int>(
        syscall(SYS_seccomp, SECCOMP_SET_MODE_FILTER, SECCOMP_FILTER_FLAG_NEW_LISTENER, &filter));
}

SupervisedCall callOf(const seccomp_notif& question) {
    SupervisedCall call{question.data.nr, static_cast<pid_t>(question.pid), {}};
    std::copy_n(question.data.args, call.arguments.size(), call.arguments.begin());
    return call;
}

seccomp_notif_resp answerTo(const seccomp_notif& question, const Verdict& verdict) {
    seccomp_notif_resp answer = {};
    answer.id = question.id;
    if (verdict.kind == Verdict::Kind::fails) {
        answer.error = -verdict.error;
    } else {
        answer.flags = SECCOMP_USER_NOTIF_FLAG_CONTINUE;
    }
    return answer;
}

void answerOne(int listener, const Judge& judge) {
    seccomp_notif question = {};
    if (ioctl(listener, SECCOMP_IOCTL_NOTIF_RECV, &question) != 0) return;
    const SupervisedCall call = callOf(question);
    const Verdict verdict = judge(call);
    if (verdict.kind == Verdict::Kind::kills) {
        // Unanswered, so that it dies with the call not made.
        kill(call.caller, SIGKILL);
        return;
    }
    seccomp_notif_resp answer = answerTo(question, verdict);
    ioctl(listener, SECCOMP_IOCTL_NOTIF_SEND, &answer);
}

/// Until nobody is left who could be asked about.
void answerAll(int listener, const Judge& judge) {
    pollfd questions = {listener, POLLIN, 0};
    while (poll(&questions, 1, -1) == 1 && (questions.revents & POLLHUP) == 0) {
        answerOne(listener, judge);
    }
    close(listener);
}

struct PathArguments {
    std::vector<std::size_t> positions;
    /// Whether the argument before each is the folder that a relative path is meant from.
    bool isAfterFolder = false;
};

PathArguments pathArguments(int number) {
    switch (number) {
#ifdef SYS_open
        case SYS_open:
        case SYS_creat:
        case SYS_stat:
        case SYS_lstat:
        case SYS_mkdir:
        case SYS_rmdir:
        case SYS_unlink:
            return {{0}};
        case SYS_rename:
        case SYS_link:
            return {{0, 1}};
#endif
#ifdef SYS_newfstatat
        case SYS_newfstatat:
#endif
        case SYS_openat:
        case SYS_statx:
        case SYS_mkdirat:
        case SYS_unlinkat:
            return {{1}, true};
#ifdef SYS_renameat
        case SYS_renameat:
#endif
        case SYS_renameat2:
        case SYS_linkat:
            return {{1, 3}, true};
        default:
            return {};
    }
}

}  // namespace

int supervise(const std::vector<int>& numbers, const std::function<int()>& body,
              const Judge& judge) {
    std::promise<int> listener;
    int answer = 0;
    std::thread worker{[&] {
        const int descriptor = installFilter(numbers);
        listener.set_value(descriptor);
        if (descriptor != -1) answer = body();
    }};
    const int descriptor = listener.get_future().get();
    if (descriptor != -1) answerAll(descriptor, judge);
    worker.join();
    if (descriptor == -1) throw std::runtime_error("system calls cannot be supervised");
    return answer;
}

std::string SupervisedCall::bytes(std::size_t argument, std::size_t size) const {
    std::string bytes(size, '\0');
    const iovec here = {bytes.data(), size};
    const iovec there = {
        reinterpret_cast<void*>(static_cast<std::uintptr_t>(arguments.at(argument))), size};
    const ssize_t read = process_vm_readv(caller, &here, 1, &there, 1, 0);
    if (read != static_cast<ssize_t>(size)) throw std::runtime_error("memory cannot be read");
    return bytes;
}

std::string SupervisedCall::text(std::size_t argument) const {
    SupervisedCall rest = *this;
    std::string text;
    for (;; ++rest.arguments.at(argument)) {
        const char character = rest.bytes(argument, 1).front();
        if (character == '\0') return text;
        text += character;
    }
}

std::string SupervisedCall::file(std::size_t argument) const {
    const int descriptor = static_cast<int>(arguments.at(argument));
    return fs::read_symlink("/proc/" + std::to_string(caller) + "/fd/" +
                            std::to_string(descriptor));
}

std::vector<std::string> SupervisedCall::paths() const {
    std::vector<std::string> paths;
    const auto [positions, isAfterFolder] = pathArguments(number);
    for (const std::size_t position : positions) {
        const fs::path path = text(position);
        const bool isRelative = isAfterFolder && path.is_relative();
        paths.push_back(isRelative ? file(position - 1) / path : path);
    }
    return paths;
}

Verdict Nth::operator()(const SupervisedCall& call) {
    if (made_++ != place_) return {};
    number_ = call.number;
    return verdict_;
}

std::vector<int> callsThatLook() {
    return {
        SYS_openat,     SYS_read,      SYS_fstat, SYS_readlinkat, SYS_getdents64,
        SYS_statx,      SYS_faccessat,
#ifdef SYS_newfstatat
        SYS_newfstatat,
#endif
#ifdef SYS_open
        SYS_open,       SYS_stat,      SYS_lstat, SYS_readlink,   SYS_access,
#endif
    };
}

std::vector<int> callsThatChange() {
    return {
        SYS_openat,   SYS_write,     SYS_pwrite64, SYS_ftruncate, SYS_fallocate,
        SYS_fsync,    SYS_fdatasync, SYS_fchmod,   SYS_fchmodat,  SYS_fchown,
        SYS_flock,    SYS_mkdirat,   SYS_unlinkat, SYS_renameat2, SYS_linkat,
#ifdef SYS_renameat
        SYS_renameat,
#endif
#ifdef SYS_open
        SYS_open,     SYS_creat,     SYS_chmod,    SYS_chown,     SYS_mkdir,
        SYS_rmdir,    SYS_unlink,    SYS_rename,   SYS_link,
#endif
    };
}

bool isStat(int number) {
#ifdef SYS_newfstatat
    if (number == SYS_newfstatat) return true;
#endif
#ifdef SYS_stat
    if (number == SYS_stat || number == SYS_lstat) return true;
#endif
    return number == SYS_statx || number == SYS_fstat;
}

}  // namespace quillet::test
