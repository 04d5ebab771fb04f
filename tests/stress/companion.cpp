// SPDX-License-Identifier: MIT
#include "tests/stress/companion.h"

#include <signal.h>
#include <sys/wait.h>

#include "tests/support/child.h"

namespace quillet::test {

Companion::Companion(const Start& how)
    : errors_{how.errors}, process_{start(QUILLET_SPRINGBOARD, how)} {}

void Companion::kill() {
    if (isOver_) return;
    ::kill(process_, SIGKILL);
    status_ = waitFor(process_);
    isOver_ = true;
}

bool Companion::ends() {
    return becomesTrue([this] { return hasEnded(); });
}

bool Companion::isRunning() { return !hasEnded(); }

bool Companion::hasEnded() {
    int report = 0;
    if (!isOver_ && waitpid(process_, &report, WNOHANG) == process_) {
        isOver_ = true;
        status_ = statusOf(report);
    }
    return isOver_;
}

}  // namespace quillet::test
