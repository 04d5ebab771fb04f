// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <cstdint>
#include <limits>

#include "platform/standin/notifications/notification_table.h"

namespace quillet::standin {

/// A name of the table, and the posts of it that its holder has seen. For any thread.
class Subscription {
public:
    /// Which posts count as seen: those up to now, or none, not even the want of one, so that the
    /// first check of all finds something.
    enum class Seen { upToNow, none };

    Subscription(NotificationTable::Entry& entry, Seen seen)
        : entry_{entry}, seen_{seen == Seen::upToNow ? entry.posts.load() : nothing} {}

    NotificationTable::Entry& entry() const { return entry_; }

    /// Whether there is a post that was not seen.
    bool isPending() const { return seen_.load() != entry_.posts.load(); }

    /// The same, and sees it: of checks at the same time one finds a post.
    bool check() {
        std::uint64_t seen = seen_.load();
        std::uint64_t posts = 0;
        // Asked anew each time, so that no check takes back what another has seen.
        do {
            posts = entry_.posts.load();
        } while (!seen_.compare_exchange_weak(seen, posts));
        return seen != posts;
    }

private:
    /// No count of posts.
    static constexpr std::uint64_t nothing = std::numeric_limits<std::uint64_t>::max();

    NotificationTable::Entry& entry_;
    std::atomic<std::uint64_t> seen_;
};

}  // namespace quillet::standin
