// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/notification_center.h"
#include "platform/standin/notifications/notification_table.h"

namespace quillet::standin {

/// The observers of this process, and the posts that they have not been told of yet.
class NotificationCenter {
public:
    explicit NotificationCenter(NotificationTable& table) : table_{table} {}

    struct Observer {
        CFNotificationCallback callback;
        void* observer;
        std::string name;
        const void* object;
    };

    /// Does nothing when the service has no room for the observer's name.
    void add(Observer observer);

    /// Whether there is a post that an observer has not been told of.
    bool isPending() const;

    /// Calls every observer whose name was posted since it was last called: once, however many
    /// posts there were.
    void deliver();

private:
    struct Registration {
        Observer observer;
        NotificationTable::Entry* entry;
        std::uint32_t postsSeen;
    };

    NotificationTable& table_;
    std::vector<Registration> registrations_;
};

}  // namespace quillet::standin
