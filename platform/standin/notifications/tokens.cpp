// SPDX-License-Identifier: MIT
#include "platform/standin/notifications/tokens.h"

#include <utility>

#include "platform/notify.h"
#include "platform/standin/notifications/process_lock.h"

namespace quillet::standin {

std::uint32_t Tokens::take(std::string_view name, int& token) {
    if (refusing_) return NOTIFY_STATUS_FAILED;
    if (name.empty() || name.size() > NotificationTable::maxNameLength) {
        return NOTIFY_STATUS_INVALID_NAME;
    }
    NotificationTable::Entry* const entry = table_.findOrAdd(name);
    if (entry == nullptr) return NOTIFY_STATUS_FAILED;
    auto subscription = std::make_shared<Subscription>(*entry, Subscription::Seen::none);
    const ProcessLock lock;
    token = next_++;
    tokens_.emplace(token, std::move(subscription));
    return NOTIFY_STATUS_OK;
}

std::shared_ptr<Subscription> Tokens::find(int token) const {
    const ProcessLock lock;
    const auto found = tokens_.find(token);
    return found == tokens_.end() ? nullptr : found->second;
}

bool Tokens::cancel(int token) {
    const ProcessLock lock;
    return tokens_.erase(token) != 0;
}

std::size_t Tokens::count() const {
    const ProcessLock lock;
    return tokens_.size();
}

}  // namespace quillet::standin
