// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string_view>

#include "platform/standin/notifications/notification_table.h"

namespace quillet::standin {

/// The notification tokens of this process. A token's number is never given twice.
class Tokens {
public:
    explicit Tokens(NotificationTable& table) : table_{table} {}

    struct Token {
        NotificationTable::Entry* entry;
        /// As of the last check; none before the first, which therefore always finds something.
        std::optional<std::uint32_t> postsSeen;

        bool check();
    };

    /// A status of notify(3); `token` is set when it is NOTIFY_STATUS_OK.
    std::uint32_t take(std::string_view name, int& token);

    /// Null for a number that is no token. Owned by the tokens, until it is cancelled.
    Token* find(int token);

    bool cancel(int token) { return tokens_.erase(token) != 0; }

    std::size_t count() const { return tokens_.size(); }

    /// From now on every registration fails, as when the service cannot be reached.
    void refuse(bool refusing) { refusing_ = refusing; }

private:
    NotificationTable& table_;
    std::map<int, Token> tokens_;
    int next_ = 0;
    bool refusing_ = false;
};

}  // namespace quillet::standin
