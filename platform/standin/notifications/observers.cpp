// SPDX-License-Identifier: MIT
#include "platform/standin/notifications/observers.h"

#include <algorithm>
#include <utility>

namespace quillet::standin {

bool Observers::add(std::string_view name, Callback callback) {
    NotificationTable::Entry* const entry = table_.findOrAdd(name);
    if (entry == nullptr) return false;
    registrations_.push_back({{*entry, Subscription::Seen::upToNow}, std::move(callback)});
    return true;
}

bool Observers::isPending() const {
    return std::ranges::any_of(registrations_, [](const Registration& registration) {
        return registration.subscription.isPending();
    });
}

void Observers::deliver() {
    // By index, and the callback copied: a callback may add observers.
    const std::size_t count = registrations_.size();
    for (std::size_t i = 0; i < count; ++i) {
        if (!registrations_[i].subscription.check()) continue;
        const Callback callback = registrations_[i].callback;
        callback();
    }
}

void Observers::keepFirst(std::size_t count) {
    registrations_.erase(registrations_.begin() + static_cast<std::ptrdiff_t>(count),
                         registrations_.end());
}

}  // namespace quillet::standin
