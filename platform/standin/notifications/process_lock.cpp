// SPDX-License-Identifier: MIT
#include "platform/standin/notifications/process_lock.h"

#include <pthread.h>

namespace quillet::standin {

namespace {

std::mutex guard;

void lock() { guard.lock(); }
void unlock() { guard.unlock(); }

[[maybe_unused]] const int forksWhole = pthread_atfork(lock, unlock, unlock);

}  // namespace

ProcessLock::ProcessLock() : lock_{guard} {}

}  // namespace quillet::standin
