// SPDX-License-Identifier: MIT
#include "platform/standin/notifications/observers.h"

#include <algorithm>
#include <utility>

#include "platform/standin/device/device.h"
#include "platform/standin/runtime/instance.h"

namespace quillet::standin {

namespace {

constexpr char centerDescription[] = "<CFNotificationCenter>";

/// The bundle only ever hands the centre back, so any address will do.
CFNotificationCenterRef darwinCenter() {
    static int center = 0;
    return reinterpret_cast<CFNotificationCenterRef>(&center);
}

}  // namespace

void NotificationCenter::add(Observer observer) {
    NotificationTable::Entry* const entry = table_.findOrAdd(observer.name);
    if (entry == nullptr) return;
    registrations_.push_back({std::move(observer), entry, entry->posts.load()});
}

bool NotificationCenter::isPending() const {
    return std::ranges::any_of(registrations_, [](const Registration& registration) {
        return registration.entry->posts.load() != registration.postsSeen;
    });
}

void NotificationCenter::deliver() {
    // By index: a callback may add an observer.
    for (std::size_t i = 0; i < registrations_.size(); ++i) {
        const std::uint32_t posts = registrations_[i].entry->posts.load();
        if (posts == registrations_[i].postsSeen) continue;
        registrations_[i].postsSeen = posts;
        const Observer observer = registrations_[i].observer;
        observer.callback(darwinCenter(), observer.observer, makeString(observer.name),
                          observer.object, nullptr);
    }
}

}  // namespace quillet::standin

namespace quillet {

using standin::Device;

CFNotificationCenterRef CFNotificationCenterGetDarwinNotifyCenter() {
    Device::current().trace.answer(standin::centerDescription, "",
                                   "CFNotificationCenterGetDarwinNotifyCenter");
    return standin::darwinCenter();
}

void CFNotificationCenterAddObserver(CFNotificationCenterRef /*center*/, const void* observer,
                                     CFNotificationCallback callback, CFStringRef name,
                                     const void* object,
                                     CFNotificationSuspensionBehavior suspensionBehavior) {
    Device& device = Device::current();
    const std::string nameText{standin::text(name)};
    device.trace.call("", "CFNotificationCenterAddObserver", standin::centerDescription,
                      standin::pointerTrace(observer), "<callback>", nameText,
                      standin::pointerTrace(object), suspensionBehavior);
    device.center.add({callback, const_cast<void*>(observer), nameText, object});
}

void CFNotificationCenterPostNotification(CFNotificationCenterRef /*center*/, CFStringRef name,
                                          const void* object, CFDictionaryRef userInfo,
                                          Boolean deliverImmediately) {
    Device& device = Device::current();
    device.trace.call("", "CFNotificationCenterPostNotification", standin::centerDescription,
                      standin::text(name), standin::objectTrace(object),
                      standin::pointerTrace(userInfo), deliverImmediately != 0);
    if (auto* const entry = device.notifications.find(standin::text(name))) {
        device.notifications.post(*entry);
    }
}

}  // namespace quillet
