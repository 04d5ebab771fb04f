// SPDX-License-Identifier: MIT
#include "settings/vibration.h"

#include "platform/graphics_services.h"
#include "platform/notification_center.h"
#include "platform/notify.h"
#include "platform/property_list.h"
#include "platform/run_loop.h"
#include "platform/system.h"

namespace quillet {

BOOL GLOBAL_vibrateWhenRinging = NO;
BOOL GLOBAL_vibrateWhenSilent = NO;

namespace {

constexpr char springBoardPreferencesPath[] =
    "/var/mobile/Library/Preferences/com.apple.springboard.plist";
constexpr char springBoardIdentifier[] = "com.apple.springboard";
constexpr char ringVibrateKey[] = "ring-vibrate";
constexpr char silentVibrateKey[] = "silent-vibrate";
constexpr char graphicsServicesPath[] =
    "/System/Library/PrivateFrameworks/GraphicsServices.framework/GraphicsServices";

/// Given to SpringBoard after the announcements.
constexpr NSTimeInterval settleInterval = 0.5;

BOOL setting(const NSMutableDictionary& settings, const char* key) {
    const Object value = settings.objectForKey(key);
    return value ? value.boolValue() : YES;
}

void write(const NSMutableDictionary& settings, BOOL whenRinging, BOOL whenSilent) {
    settings.setValue(NSNumber::numberWithBool(whenRinging), ringVibrateKey);
    settings.setValue(NSNumber::numberWithBool(whenSilent), silentVibrateKey);
    settings.writeToFile(springBoardPreferencesPath, YES);
}

void announce() {
    notify_post("com.apple.springboard.ring-vibrate.changed");
    GSSendAppPreferencesChanged(NSString(springBoardIdentifier), NSString(ringVibrateKey));
    notify_post("com.apple.springboard.silent-vibrate.changed");
    GSSendAppPreferencesChanged(NSString(springBoardIdentifier), NSString(silentVibrateKey));
}

/// Not a sleep: observers and timers of this thread must go on being served.
void settle() {
    NSRunLoop::currentRunLoop().runUntilDate(NSDate::dateWithTimeIntervalSinceNow(settleInterval));
}

}  // namespace

void turnSpringBoardVibrationOff() {
    const auto settings =
        NSMutableDictionary::dictionaryWithContentsOfFile(springBoardPreferencesPath);
    GLOBAL_vibrateWhenRinging = setting(settings, ringVibrateKey);
    GLOBAL_vibrateWhenSilent = setting(settings, silentVibrateKey);
    write(settings, NO, NO);
    announce();
    settle();
}

void restoreSpringBoardVibration() {
    const auto settings =
        NSMutableDictionary::dictionaryWithContentsOfFile(springBoardPreferencesPath);
    // Meant: no test that anything was saved; before a first turn-off this writes NO and NO.
    write(settings, GLOBAL_vibrateWhenRinging, GLOBAL_vibrateWhenSilent);
    announce();
    settle();
}

void updatePref(CFStringRef key) {
    void* const library = dlopen(graphicsServicesPath, RTLD_LAZY);
    if (library == nullptr) return;
    // Meant: no test for absence; the library always exports this function.
    const auto send = reinterpret_cast<decltype(&GSSendAppPreferencesChanged)>(
        dlsym(library, "GSSendAppPreferencesChanged"));
    send(NSString(springBoardIdentifier), key);
    dlclose(library);
}

void notifyDarwinCenter(CFStringRef name) {
    const NSString object = springBoardIdentifier;
    CFNotificationCenterPostNotification(CFNotificationCenterGetDarwinNotifyCenter(), name,
                                         object.instance(), nullptr, true);
}

}  // namespace quillet
