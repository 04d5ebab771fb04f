// SPDX-License-Identifier: MIT
#pragma once

#include <mutex>

namespace quillet::standin {

/// Guards what this process keeps of the notification service against its own threads, for as long
/// as the object lives. No callback and no wait may be inside. A process that forks does so while
/// no other thread is: its child finds all of it whole, and free. See pthread_atfork(3).
class ProcessLock {
public:
    ProcessLock() : lock_{guard_} {}

private:
    static std::mutex guard_;
    static const int forksWhole_;

    std::lock_guard<std::mutex> lock_;
};

}  // namespace quillet::standin
