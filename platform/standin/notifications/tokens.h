// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "platform/standin/notifications/notification_table.h"

namespace quillet::standin {

/// The notification tokens of this process. A token's number is never given twice. For any thread.
class Tokens {
public:
    /// `table` must outlive them.
    explicit Tokens(NotificationTable& table);
    ~Tokens();

    /// A status of notify(3); `token` is set when it is NOTIFY_STATUS_OK. The first check of a
    /// token finds something.
    std::uint32_t take(std::string_view name, int& token);

    /// The entry of a token's name, owned by the table; null for a number that is no token. Takes
    /// no lock.
    NotificationTable::Entry* find(int token) const;

    /// Whether there was a post since the token's last check: of checks at the same time one finds
    /// it. Nothing for a number that is no token.
    std::optional<bool> check(int token);

    bool cancel(int token);

    std::size_t count() const;

    /// From now on every registration fails, as when the service cannot be reached.
    void refuse(bool refusing) { refusing_ = refusing; }

private:
    struct Slot;
    class Slots;

    /// Null for a number that is no token. To be called under the ProcessLock, and so is grow.
    Slot* slotOf(int token);
    void grow();

    NotificationTable& table_;
    /// Replaced under the ProcessLock. What was replaced stays for those who are reading there.
    std::atomic<Slots*> slots_;
    std::atomic<bool> refusing_ = false;
    /// All below under the ProcessLock.
    std::vector<std::unique_ptr<Slots>> allSlots_;
    std::size_t count_ = 0;
    int next_ = 0;
};

}  // namespace quillet::standin
