// SPDX-License-Identifier: MIT
#include "platform/standin/files/file_lock.h"

#include <sys/file.h>

#include <cerrno>
#include <chrono>
#include <thread>

namespace quillet::standin {

namespace {

/// Asks again and again: a wait inside the kernel would have no end but the holder's, or a signal.
bool takeInTime(int descriptor) {
    const auto end = std::chrono::steady_clock::now() + FileLock::longestWait;
    while (flock(descriptor, LOCK_EX | LOCK_NB) != 0) {
        const bool mayYetBe = errno == EWOULDBLOCK || errno == EINTR;
        if (!mayYetBe || std::chrono::steady_clock::now() >= end) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds{10});
    }
    return true;
}

}  // namespace

FileLock::FileLock(int descriptor) : descriptor_{descriptor}, isHeld_{takeInTime(descriptor)} {}

FileLock::~FileLock() {
    if (isHeld_) flock(descriptor_, LOCK_UN);
}

}  // namespace quillet::standin
