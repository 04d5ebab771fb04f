// SPDX-License-Identifier: MIT
#include "platform/notification_center.h"

#include <string>

#include "platform/standin/device/device.h"

namespace quillet {

using standin::Answer;
using standin::Device;
using standin::DeviceRoot;
using standin::ObjectAt;
using standin::Pointer;

namespace {

constexpr char centerDescription[] = "<CFNotificationCenter>";

/// The bundle only ever hands the centre back, so any address will do.
CFNotificationCenterRef darwinCenter() {
    static int center = 0;
    return reinterpret_cast<CFNotificationCenterRef>(&center);
}

}  // namespace

CFNotificationCenterRef CFNotificationCenterGetDarwinNotifyCenter() {
    Device::current().trace.function("CFNotificationCenterGetDarwinNotifyCenter",
                                     Answer{centerDescription});
    return darwinCenter();
}

void CFNotificationCenterAddObserver(CFNotificationCenterRef /*center*/, const void* observer,
                                     CFNotificationCallback callback, CFStringRef name,
                                     const void* object,
                                     CFNotificationSuspensionBehavior suspensionBehavior) {
    Device& device = Device::current();
    const std::string nameText{standin::text(name)};
    device.trace.function("CFNotificationCenterAddObserver", centerDescription, Pointer{observer},
                          "<callback>", nameText, Pointer{object}, suspensionBehavior);
    const bool isAdded = device.observers.add(nameText, [=] {
        callback(darwinCenter(), const_cast<void*>(observer), standin::makeString(nameText), object,
                 nullptr);
    });
    if (!isAdded) {
        device.complaints.add(device.below(DeviceRoot::notificationsPath),
                              "does not take \"" + nameText + '"');
    }
}

void CFNotificationCenterPostNotification(CFNotificationCenterRef /*center*/, CFStringRef name,
                                          const void* object, CFDictionaryRef userInfo,
                                          Boolean deliverImmediately) {
    Device& device = Device::current();
    device.trace.function("CFNotificationCenterPostNotification", centerDescription,
                          standin::text(name), ObjectAt{object}, Pointer{userInfo},
                          deliverImmediately != 0);
    const std::string_view nameText = standin::text(name);
    device.journal.add("posted", standin::Told{"name", nameText});
    device.notifications.post(nameText);
}

}  // namespace quillet
