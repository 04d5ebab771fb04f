// SPDX-License-Identifier: MIT
#include "tests/support/child.h"

#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <exception>
#include <stdexcept>

namespace quillet::test {

namespace {

constexpr pid_t none = -1;
constexpr int failed = 99;

}  // namespace

int answerOf(const std::function<int()>& body) {
    try {
        return body();
    } catch (const std::exception& error) {
        std::fprintf(stderr, "second process: %s\n", error.what());
        return failed;
    }
}

int statusOf(int report) { return WIFSIGNALED(report) ? -WTERMSIG(report) : WEXITSTATUS(report); }

Child::Child(const std::function<int()>& body) : process_{fork()} {
    if (process_ == none) throw std::runtime_error("no second process");
    if (process_ == 0) _exit(answerOf(body));
}

Child::~Child() {
    if (process_ == none) return;
    kill();
    wait();
}

void Child::kill() { ::kill(process_, SIGKILL); }

bool Child::isRunning() {
    int report = 0;
    if (process_ != none && waitpid(process_, &report, WNOHANG) == process_) {
        process_ = none;
        status_ = statusOf(report);
    }
    return process_ != none;
}

int Child::wait() {
    int report = 0;
    if (process_ != none && waitpid(process_, &report, 0) == process_) {
        process_ = none;
        status_ = statusOf(report);
    }
    return status_;
}

Gate::Gate() {
    if (pipe(ends_) != 0) throw std::runtime_error("no pipe");
}

Gate::~Gate() {
    close(ends_[0]);
    close(ends_[1]);
}

void Gate::open() {
    if (write(ends_[1], "", 1) != 1) throw std::runtime_error("the gate does not open");
}

bool Gate::pass() {
    pollfd end = {ends_[0], POLLIN, 0};
    char byte = 0;
    return poll(&end, 1, 20000) == 1 && read(ends_[0], &byte, 1) == 1;
}

}  // namespace quillet::test
