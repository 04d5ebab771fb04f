// SPDX-License-Identifier: MIT
#include "platform/standin/notifications/tokens.h"

#include <utility>

#include "platform/notify.h"
#include "platform/standin/notifications/process_lock.h"
#include "platform/standin/notifications/subscription.h"

namespace quillet::standin {

/// Where one token is at a time. Written under the ProcessLock; what is atomic is read without.
struct Tokens::Slot {
    /// The last that was here. It changes only while there is no entry.
    std::atomic<int> token = NOTIFY_TOKEN_INVALID;
    /// Null while no token is here.
    std::atomic<NotificationTable::Entry*> entry = nullptr;
    std::optional<Subscription> subscription = {};

    void fill(int number, const Subscription& taken) {
        token = number;
        entry = &taken.entry();
        subscription = taken;
    }
    void empty() {
        entry = nullptr;
        subscription.reset();
    }
};

/// Slots by the last bits of the tokens' numbers.
class Tokens::Slots {
public:
    /// `count` is a power of two.
    explicit Slots(std::size_t count) : slots_(count), last_{count - 1} {}

    std::size_t count() const { return last_ + 1; }
    Slot& of(int token) { return slots_[static_cast<unsigned>(token) & last_]; }

    /// Takes over the tokens of fewer slots: what differs in fewer bits does so in more.
    void copy(const Slots& fewer) {
        for (const Slot& slot : fewer.slots_) {
            if (slot.subscription) of(slot.token).fill(slot.token, *slot.subscription);
        }
    }

private:
    std::vector<Slot> slots_;
    std::size_t last_;
};

Tokens::Tokens(NotificationTable& table) : table_{table} {
    constexpr std::size_t atFirst = 16;
    allSlots_.push_back(std::make_unique<Slots>(atFirst));
    slots_ = allSlots_.back().get();
}

Tokens::~Tokens() = default;

std::uint32_t Tokens::take(std::string_view name, int& token) {
    if (refusing_) return NOTIFY_STATUS_FAILED;
    if (name.empty() || name.size() > NotificationTable::maxNameLength) {
        return NOTIFY_STATUS_INVALID_NAME;
    }
    NotificationTable::Entry* const entry = table_.findOrAdd(name);
    if (entry == nullptr) return NOTIFY_STATUS_FAILED;
    const ProcessLock lock;
    // Half of them stay free, so that a free one is near.
    if (2 * count_ == slots_.load()->count()) grow();
    Slots& slots = *slots_.load();
    while (slots.of(next_).subscription) ++next_;
    slots.of(next_).fill(next_, Subscription{*entry, Subscription::Seen::none});
    ++count_;
    token = next_++;
    return NOTIFY_STATUS_OK;
}

NotificationTable::Entry* Tokens::find(int token) const {
    const Slot& slot = slots_.load()->of(token);
    if (slot.token.load() != token) return nullptr;
    NotificationTable::Entry* const entry = slot.entry.load();
    // Asked again: it may be the entry of the next token here.
    return slot.token.load() == token ? entry : nullptr;
}

Tokens::Slot* Tokens::slotOf(int token) {
    Slot& slot = slots_.load()->of(token);
    return slot.subscription && slot.token == token ? &slot : nullptr;
}

std::optional<bool> Tokens::check(int token) {
    const ProcessLock lock;
    Slot* const slot = slotOf(token);
    return slot == nullptr ? std::nullopt : std::optional{slot->subscription->check()};
}

bool Tokens::cancel(int token) {
    const ProcessLock lock;
    Slot* const slot = slotOf(token);
    if (slot == nullptr) return false;
    slot->empty();
    --count_;
    return true;
}

std::size_t Tokens::count() const {
    const ProcessLock lock;
    return count_;
}

void Tokens::grow() {
    const Slots& before = *slots_.load();
    auto more = std::make_unique<Slots>(2 * before.count());
    more->copy(before);
    slots_ = more.get();
    allSlots_.push_back(std::move(more));
}

}  // namespace quillet::standin
