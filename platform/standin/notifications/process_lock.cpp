// SPDX-License-Identifier: MIT
#include "platform/standin/notifications/process_lock.h"

#include <pthread.h>

namespace quillet::standin {

std::mutex ProcessLock::guard_;

const int ProcessLock::forksWhole_ =
    pthread_atfork([] { guard_.lock(); }, [] { guard_.unlock(); }, [] { guard_.unlock(); });

}  // namespace quillet::standin
