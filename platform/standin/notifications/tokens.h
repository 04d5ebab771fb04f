// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string_view>

#include "platform/standin/notifications/notification_table.h"
#include "platform/standin/notifications/subscription.h"

namespace quillet::standin {

/// The notification tokens of this process. A token's number is never given twice.
class Tokens {
public:
    explicit Tokens(NotificationTable& table) : table_{table} {}

    /// A status of notify(3); `token` is set when it is NOTIFY_STATUS_OK. The first check of a
    /// token finds something.
    std::uint32_t take(std::string_view name, int& token);

    /// Null for a number that is no token. Owned by the tokens, until it is cancelled.
    Subscription* find(int token);

    bool cancel(int token) { return tokens_.erase(token) != 0; }

    std::size_t count() const { return tokens_.size(); }

    /// From now on every registration fails, as when the service cannot be reached.
    void refuse(bool refusing) { refusing_ = refusing; }

private:
    NotificationTable& table_;
    std::map<int, Subscription> tokens_;
    int next_ = 0;
    bool refusing_ = false;
};

}  // namespace quillet::standin
