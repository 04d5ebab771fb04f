// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string_view>

#include "platform/standin/notifications/notification_table.h"
#include "platform/standin/notifications/subscription.h"

namespace quillet::standin {

/// The notification tokens of this process. A token's number is never given twice. For any thread.
class Tokens {
public:
    explicit Tokens(NotificationTable& table) : table_{table} {}

    /// A status of notify(3); `token` is set when it is NOTIFY_STATUS_OK. The first check of a
    /// token finds something.
    std::uint32_t take(std::string_view name, int& token);

    /// Null for a number that is no token. What was found outlives the token's cancelling.
    std::shared_ptr<Subscription> find(int token) const;

    bool cancel(int token);

    std::size_t count() const;

    /// From now on every registration fails, as when the service cannot be reached.
    void refuse(bool refusing) { refusing_ = refusing; }

private:
    NotificationTable& table_;
    /// Both under the ProcessLock.
    std::map<int, std::shared_ptr<Subscription>> tokens_;
    int next_ = 0;
    std::atomic<bool> refusing_ = false;
};

}  // namespace quillet::standin
