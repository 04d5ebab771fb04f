// SPDX-License-Identifier: MIT
#include "platform/notify.h"

#include <memory>
#include <optional>
#include <string>

#include "platform/standin/device/device.h"

namespace quillet {

using standin::Answer;
using standin::Device;
using standin::DeviceRoot;
using standin::Subscription;
using standin::Told;

namespace {

uint32_t statusOf(const std::shared_ptr<Subscription>& token) {
    return token == nullptr ? NOTIFY_STATUS_INVALID_TOKEN : NOTIFY_STATUS_OK;
}

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
    const auto found = device.tokens.find(token);
    if (found != nullptr) *outCheck = found->check();
    device.trace.function("notify_check", token, left(found != nullptr, *outCheck),
                          Answer{statusOf(found)});
    return statusOf(found);
}

uint32_t notify_get_state(int token, uint64_t* outState) {
    Device& device = Device::current();
    const auto found = device.tokens.find(token);
    if (found != nullptr) *outState = found->entry().state.load();
    device.trace.function("notify_get_state", token, left(found != nullptr, *outState),
                          Answer{statusOf(found)});
    return statusOf(found);
}

uint32_t notify_set_state(int token, uint64_t state) {
    Device& device = Device::current();
    const auto found = device.tokens.find(token);
    if (found != nullptr) {
        found->entry().state.store(state);
        const std::string_view name = found->entry().view();
        device.journal.add("word-set", Told{"name", name}, Told{"word", state});
    }
    device.trace.function("notify_set_state", token, state, Answer{statusOf(found)});
    return statusOf(found);
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
