// SPDX-License-Identifier: MIT
#include "platform/standin/notifications/observers.h"

#include <algorithm>
#include <utility>

#include "platform/standin/notifications/process_lock.h"

namespace quillet::standin {

bool Observers::add(std::string_view name, Callback callback) {
    NotificationTable::Entry* const entry = table_.findOrAdd(name);
    if (entry == nullptr) return false;
    auto registration = std::make_shared<Registration>(*entry, std::move(callback));
    const ProcessLock lock;
    registrations_.push_back(std::move(registration));
    return true;
}

bool Observers::isPending() const {
    const ProcessLock lock;
    return std::ranges::any_of(registrations_, [](const auto& registration) {
        return registration->subscription.isPending();
    });
}

void Observers::deliver() {
    // By index: a callback may add observers.
    const std::size_t end = count();
    for (std::size_t i = 0; i < end; ++i) {
        const auto registration = at(i);
        if (registration != nullptr && registration->subscription.check()) registration->callback();
    }
}

std::size_t Observers::count() const {
    const ProcessLock lock;
    return registrations_.size();
}

std::shared_ptr<Observers::Registration> Observers::at(std::size_t index) const {
    const ProcessLock lock;
    return index < registrations_.size() ? registrations_[index] : nullptr;
}

void Observers::keepFirst(std::size_t count) {
    const ProcessLock lock;
    registrations_.erase(registrations_.begin() + static_cast<std::ptrdiff_t>(count),
                         registrations_.end());
}

}  // namespace quillet::standin
