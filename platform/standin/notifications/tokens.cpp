// SPDX-License-Identifier: MIT
#include "platform/standin/notifications/tokens.h"

#include "platform/notify.h"

namespace quillet::standin {

std::uint32_t Tokens::take(std::string_view name, int& token) {
    if (refusing_) return NOTIFY_STATUS_FAILED;
    if (name.empty() || name.size() > NotificationTable::maxNameLength) {
        return NOTIFY_STATUS_INVALID_NAME;
    }
    NotificationTable::Entry* const entry = table_.findOrAdd(name);
    if (entry == nullptr) return NOTIFY_STATUS_FAILED;
    token = next_++;
    tokens_.emplace(token, Subscription{*entry, Subscription::Seen::none});
    return NOTIFY_STATUS_OK;
}

Subscription* Tokens::find(int token) {
    const auto found = tokens_.find(token);
    return found == tokens_.end() ? nullptr : &found->second;
}

}  // namespace quillet::standin
