// SPDX-License-Identifier: MIT
#pragma once

#include "platform/object.h"

namespace quillet {

/// The preferences file of the bundle: a property-list dictionary that a settings interface writes,
/// but for the ringtone volume, which the switch keeps in it. It is read afresh at every use, so
/// that a change counts from the next flip on.
inline constexpr char preferencesPath[] =
    "/var/mobile/Library/Preferences/com.velk.switch.ringer.plist";

/// Boolean: leave vibration to SpringBoard's own settings.
inline constexpr char defaultVibrationPatternKey[] = "ios-vibrate-pattern";
/// Boolean: vibrate once when the ringer is turned off.
inline constexpr char vibrateWhenOffKey[] = "vibrate-when-off";
/// Boolean: vibrate once when the ringer is turned on.
inline constexpr char vibrateWhenOnKey[] = "vibrate-when-on";
/// Real of single precision, 0.0 to 1.0: the ringtone volume to go back to on an iPod.
inline constexpr char ringtoneVolumeKey[] = "ringtone-volume";

/// The user's vibration choices as of the last load.
///
/// Each property is read and written by one atomic one-byte access. `loadPreferences` is not
/// guarded against readers on other threads: everything runs on the host's main thread.
class PrefsLoader : public NSObject {
public:
    /// This class as the platform's runtime knows it. Defined once for each platform.
    static Class classObject();

    using NSObject::operator new;
    static void* operator new(size_t size) { return alloc(classObject(), size); }
    static void operator delete(void* object) noexcept { release(object); }

    /// NO, YES, NO. Does not read the file.
    PrefsLoader();

    /// Takes the choices from the preferences file. A choice that the file leaves open may keep
    /// its earlier value; a file that cannot be read is no file.
    void loadPreferences();

    /// YES: SpringBoard's vibration settings are left alone and the switch never vibrates itself.
    BOOL defaultVibrationPattern() const { return get(defaultVibrationPattern_); }
    void setDefaultVibrationPattern(BOOL value) { set(defaultVibrationPattern_, value); }

    /// YES: vibrate once when the ringer is turned off. Counts while defaultVibrationPattern is NO.
    BOOL vibrateWhenOff() const { return get(vibrateWhenOff_); }
    void setVibrateWhenOff(BOOL value) { set(vibrateWhenOff_, value); }

    /// YES: vibrate once when the ringer is turned on. Counts while defaultVibrationPattern is NO.
    BOOL vibrateWhenOn() const { return get(vibrateWhenOn_); }
    void setVibrateWhenOn(BOOL value) { set(vibrateWhenOn_, value); }

private:
    static BOOL get(const BOOL& field) { return __atomic_load_n(&field, __ATOMIC_RELAXED); }
    static void set(BOOL& field, BOOL value) { __atomic_store_n(&field, value, __ATOMIC_RELAXED); }

    BOOL defaultVibrationPattern_;
    BOOL vibrateWhenOff_;
    BOOL vibrateWhenOn_;
};

/// The one instance: null until the bundle's class is loaded, then never replaced or released by
/// the bundle. While it is null the switch sends nothing and takes NO for every choice.
extern "C" [[gnu::visibility("default")]] PrefsLoader* _prefsLoader;

}  // namespace quillet
