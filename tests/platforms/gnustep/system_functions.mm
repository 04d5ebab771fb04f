// SPDX-License-Identifier: MIT
#include <dlfcn.h>

#include <string>
#include <string_view>

#include "platform/graphics_services.h"
#include "platform/notification_center.h"
#include "tests/platforms/gnustep/host.h"
#include "tests/platforms/gnustep/values.h"

// The platform's C functions that take or give strings: the stand-in's, with the strings made into
// its own. The bundle is linked so that its calls arrive here; see --wrap in ld(1).

namespace quillet::gnustep {

namespace {

NSString standinString(CFStringRef string) {
    return gnustep::standinString(reinterpret_cast<::NSString*>(const_cast<CFString*>(string)));
}

}  // namespace

extern "C" {

void __wrap_GSSendAppPreferencesChanged(CFStringRef application, CFStringRef key) {
    GSSendAppPreferencesChanged(standinString(application), standinString(key));
}

/// The stand-in's answer, but that the function found is the one above.
void* __wrap_dlsym(void* handle, const char* symbol) {
    static const auto lookUp =
        reinterpret_cast<decltype(&__wrap_dlsym)>(dlsym(RTLD_NEXT, "__wrap_dlsym"));
    const bool found = lookUp(handle, symbol) != nullptr;
    return found ? reinterpret_cast<void*>(&__wrap_GSSendAppPreferencesChanged) : nullptr;
}

void __wrap_CFNotificationCenterPostNotification(CFNotificationCenterRef center, CFStringRef name,
                                                 const void* object, CFDictionaryRef userInfo,
                                                 Boolean deliverImmediately) {
    const NSString sender = standinString(static_cast<CFStringRef>(object));
    CFNotificationCenterPostNotification(center, standinString(name), sender.instance(), userInfo,
                                         deliverImmediately);
}

void __wrap_CFNotificationCenterAddObserver(CFNotificationCenterRef center, const void* observer,
                                            CFNotificationCallback callback, CFStringRef name,
                                            const void* object,
                                            CFNotificationSuspensionBehavior behavior) {
    const std::string nameText{standin::text(standinString(name))};
    standin::Device& device = standin::Device::current();
    device.trace.function("CFNotificationCenterAddObserver", "<CFNotificationCenter>",
                          standin::Pointer{observer}, "<callback>", nameText,
                          standin::Pointer{object}, behavior);
    device.observers.add(nameText, [=] {
        asHost([&] {
            callback(center, const_cast<void*>(observer),
                     reinterpret_cast<CFStringRef>(foundationString(standin::makeString(nameText))),
                     object, nullptr);
        });
    });
}

}  // extern "C"

}  // namespace quillet::gnustep
