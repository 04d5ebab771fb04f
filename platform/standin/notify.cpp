// SPDX-License-Identifier: MIT
#include "platform/notify.h"

#include <optional>
#include <string>

#include "platform/standin/device/device.h"

namespace quillet {

using standin::Answer;
using standin::Device;
using standin::DeviceRoot;
using standin::NotificationTable;
using standin::Told;

namespace {

uint32_t statusOf(bool isToken) { return isToken ? NOTIFY_STATUS_OK : NOTIFY_STATUS_INVALID_TOKEN; }

/// What a call left in an out argument.
template <class Value>
std::optional<Value> left(bool isSet, Value value) {
    return isSet ? std::optional{value} : std::nullopt;
}

}  // namespace

uint32_t notify_register_check(const char* name, int* outToken) {
    Device& device = Device::current();
    const uint32_t status = device.tokens.take(name, *outToken);
    if (status == NOTIFY_STATUS_FAILED) {
        device.complaints.add(device.below(DeviceRoot::notificationsPath),
                              "does not take \"" + std::string{name} + '"');
    }
    device.trace.function("notify_register_check", name,
                          left(status == NOTIFY_STATUS_OK, *outToken), Answer{status});
    return status;
}

uint32_t notify_check(int token, int* outCheck) {
    Device& device = Device::current();
    const std::optional<bool> found = device.tokens.check(token);
    if (found) *outCheck = *found;
    const uint32_t status = statusOf(found.has_value());
    device.trace.function("notify_check", token, left(found.has_value(), *outCheck),
                          Answer{status});
    return status;
}

uint32_t notify_get_state(int token, uint64_t* outState) {
    Device& device = Device::current();
    const NotificationTable::Entry* const entry = device.tokens.find(token);
    if (entry != nullptr) *outState = entry->state.load();
    const uint32_t status = statusOf(entry != nullptr);
    device.trace.function("notify_get_state", token, left(entry != nullptr, *outState),
                          Answer{status});
    return status;
}

uint32_t notify_set_state(int token, uint64_t state) {
    Device& device = Device::current();
    NotificationTable::Entry* const entry = device.tokens.find(token);
    if (entry != nullptr) {
        entry->state.store(state);
        device.journal.add("word-set", Told{"name", entry->view()}, Told{"word", state});
    }
    const uint32_t status = statusOf(entry != nullptr);
    device.trace.function("notify_set_state", token, state, Answer{status});
    return status;
}

uint32_t notify_post(const char* name) {
    Device& device = Device::current();
    device.trace.function("notify_post", name, Answer{NOTIFY_STATUS_OK});
    // Before the post: whoever hears of it finds it told.
    device.journal.add("posted", Told{"name", name});
    device.notifications.post(name);
    return NOTIFY_STATUS_OK;
}

uint32_t notify_cancel(int token) {
    Device& device = Device::current();
    const uint32_t status =
        device.tokens.cancel(token) ? NOTIFY_STATUS_OK : NOTIFY_STATUS_INVALID_TOKEN;
    device.trace.function("notify_cancel", token, Answer{status});
    return status;
}

}  // namespace quillet
