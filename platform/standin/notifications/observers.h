// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/standin/notifications/notification_table.h"
#include "platform/standin/notifications/subscription.h"

namespace quillet::standin {

/// The observers of this process, and the posts that they have not been told of yet. Any thread may
/// add observers; all else is for the one that delivers.
class Observers {
public:
    using Callback = std::function<void()>;

    explicit Observers(NotificationTable& table) : table_{table} {}

    /// Has `callback` called by every deliver() after posts of `name` that are still to come.
    /// Adding the same again adds another observer. False, and nothing is added, when the service
    /// has no room for the name.
    bool add(std::string_view name, Callback callback);

    /// Whether there is a post that an observer has not been told of.
    bool isPending() const;

    /// Calls every observer whose name was posted since it was last called: once, however many
    /// posts there were. Those that a callback adds wait for the next time. A callback may add
    /// observers and deliver to others.
    void deliver();

    std::size_t count() const;

    /// Forgets all but the first `count`, in the order of adding.
    void keepFirst(std::size_t count);

private:
    struct Registration {
        Registration(NotificationTable::Entry& entry, Callback work)
            : subscription{entry, Subscription::Seen::upToNow}, callback{std::move(work)} {}

        Subscription subscription;
        Callback callback;
    };

    /// Null when there are not so many.
    std::shared_ptr<Registration> at(std::size_t index) const;

    NotificationTable& table_;
    /// Under the ProcessLock.
    std::vector<std::shared_ptr<Registration>> registrations_;
};

}  // namespace quillet::standin
