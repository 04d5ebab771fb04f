// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <limits>
#include <utility>

#include "platform/standin/notifications/notification_table.h"

namespace quillet::standin {

/// A name of the table, and the posts of it that its holder has seen. For one thread at a time.
class Subscription {
public:
    /// Which posts count as seen: those up to now, or none, not even the want of one, so that the
    /// first check of all finds something.
    enum class Seen { upToNow, none };

    Subscription(NotificationTable::Entry& entry, Seen seen)
        : entry_{&entry}, seen_{seen == Seen::upToNow ? entry.posts.load() : nothing} {}

    NotificationTable::Entry& entry() const { return *entry_; }

    /// Whether there is a post that was not seen.
    bool isPending() const { return seen_ != entry_->posts.load(); }

    /// The same, and sees it.
    bool check() {
        const std::uint64_t posts = entry_->posts.load();
        return std::exchange(seen_, posts) != posts;
    }

private:
    /// No count of posts.
    static constexpr std::uint64_t nothing = std::numeric_limits<std::uint64_t>::max();

    NotificationTable::Entry* entry_;
    std::uint64_t seen_;
};

}  // namespace quillet::standin
