// SPDX-License-Identifier: MIT
#include "platform/standin/notifications/bell.h"

#include <linux/futex.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <limits>
#include <thread>

namespace quillet::standin {

namespace {

using std::chrono::nanoseconds;
using std::chrono::steady_clock;

static_assert(std::atomic<std::int64_t>::is_always_lock_free);
static_assert(sizeof(Bell) == 16, "what lies in the files of devices");

std::int64_t momentOf(steady_clock::time_point time) {
    return nanoseconds{time.time_since_epoch()}.count();
}

long futex(std::atomic<std::uint32_t>& word, int operation, std::uint32_t number,
           const timespec* time) {
    return syscall(SYS_futex, &word, operation, number, time, nullptr, 0);
}

}  // namespace

void Bell::ringForWaits() {
    std::int64_t seen = until.load();
    const std::int64_t now = momentOf(steady_clock::now());
    if (seen > now && seen <= now + nanoseconds{longestWait}.count()) {
        rings.fetch_add(1);
        futex(rings, FUTEX_WAKE, std::numeric_limits<int>::max(), nullptr);
    } else {
        // Whoever has put it off meanwhile looks at the counts after that, and finds the post.
        until.compare_exchange_strong(seen, 0);
    }
}

Bell::Wait::Wait(Bell& bell, nanoseconds time)
    : bell_{bell}, end_{steady_clock::now() + std::min<nanoseconds>(time, longestWait)} {
    std::int64_t seen = bell_.until.load();
    while (seen < momentOf(end_)) {
        if (bell_.until.compare_exchange_weak(seen, momentOf(end_))) break;
    }
    rings_ = bell_.rings.load();
}

void Bell::Wait::sleep() const {
    const nanoseconds left = end_ - steady_clock::now();
    if (left <= nanoseconds::zero()) return;
    static_assert(longestWait < std::chrono::seconds{1});
    const timespec time = {.tv_sec = 0, .tv_nsec = static_cast<long>(left.count())};
    const bool isWoken = futex(bell_.rings, FUTEX_WAIT, rings_, &time) == 0 || errno == EINTR;
    // A futex that fails at once would have the waits of a loop take all of a processor.
    if (!isWoken && bell_.rings.load() == rings_) std::this_thread::sleep_until(end_);
}

}  // namespace quillet::standin
