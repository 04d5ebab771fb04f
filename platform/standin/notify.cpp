// SPDX-License-Identifier: MIT
#include "platform/notify.h"

#include <string_view>

#include "platform/standin/device/device.h"

namespace quillet::standin {

std::uint32_t Tokens::take(std::string_view name, int& token) {
    if (refusing_) return NOTIFY_STATUS_FAILED;
    if (name.empty() || name.size() > NotificationTable::maxNameLength) {
        return NOTIFY_STATUS_INVALID_NAME;
    }
    NotificationTable::Entry* const entry = table_.findOrAdd(name);
    if (entry == nullptr) return NOTIFY_STATUS_FAILED;
    token = next_++;
    tokens_[token] = {entry, std::nullopt};
    return NOTIFY_STATUS_OK;
}

Tokens::Token* Tokens::find(int token) {
    const auto found = tokens_.find(token);
    return found == tokens_.end() ? nullptr : &found->second;
}

bool Tokens::Token::check() {
    const std::uint32_t posts = entry->posts.load();
    const bool posted = postsSeen != posts;
    postsSeen = posts;
    return posted;
}

}  // namespace quillet::standin

namespace quillet {

using standin::Device;
using standin::Tokens;
using standin::TraceValue;

namespace {

std::uint32_t status(const Tokens::Token* registration) {
    return registration == nullptr ? NOTIFY_STATUS_INVALID_TOKEN : NOTIFY_STATUS_OK;
}

/// What a call left in an out argument.
template <class Value>
TraceValue left(const Tokens::Token* registration, const Value& value) {
    return registration == nullptr ? TraceValue{} : standin::toTrace(value);
}

}  // namespace

uint32_t notify_register_check(const char* name, int* outToken) {
    Device& device = Device::current();
    const uint32_t status = device.tokens.take(name, *outToken);
    const bool taken = status == NOTIFY_STATUS_OK;
    device.trace.answer(status, "", "notify_register_check", name,
                        taken ? standin::toTrace(*outToken) : TraceValue{});
    return status;
}

uint32_t notify_check(int token, int* outCheck) {
    Device& device = Device::current();
    Tokens::Token* const registration = device.tokens.find(token);
    if (registration != nullptr) *outCheck = registration->check();
    device.trace.answer(status(registration), "", "notify_check", token,
                        left(registration, *outCheck));
    return status(registration);
}

uint32_t notify_get_state(int token, uint64_t* outState) {
    Device& device = Device::current();
    const Tokens::Token* const registration = device.tokens.find(token);
    if (registration != nullptr) *outState = registration->entry->state.load();
    device.trace.answer(status(registration), "", "notify_get_state", token,
                        left(registration, *outState));
    return status(registration);
}

uint32_t notify_set_state(int token, uint64_t state) {
    Device& device = Device::current();
    const Tokens::Token* const registration = device.tokens.find(token);
    if (registration != nullptr) registration->entry->state.store(state);
    device.trace.answer(status(registration), "", "notify_set_state", token, state);
    return status(registration);
}

uint32_t notify_post(const char* name) {
    Device& device = Device::current();
    device.trace.answer(NOTIFY_STATUS_OK, "", "notify_post", name);
    if (auto* const entry = device.notifications.find(name)) device.notifications.post(*entry);
    return NOTIFY_STATUS_OK;
}

uint32_t notify_cancel(int token) {
    Device& device = Device::current();
    const uint32_t status =
        device.tokens.cancel(token) ? NOTIFY_STATUS_OK : NOTIFY_STATUS_INVALID_TOKEN;
    device.trace.answer(status, "", "notify_cancel", token);
    return status;
}

}  // namespace quillet
