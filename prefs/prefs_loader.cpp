// SPDX-License-Identifier: MIT
#include "prefs/prefs_loader.h"

#include "platform/property_list.h"

namespace quillet {

PrefsLoader* _prefsLoader = nullptr;

PrefsLoader::PrefsLoader()
    : defaultVibrationPattern_{NO}, vibrateWhenOff_{YES}, vibrateWhenOn_{NO} {}

void PrefsLoader::loadPreferences() {
    const auto file = NSDictionary::dictionaryWithContentsOfFile(preferencesPath);

    const Object pattern = file.objectForKey(defaultVibrationPatternKey);
    defaultVibrationPattern_ = pattern ? pattern.boolValue() : YES;
    // Meant: the other two keep what they were, even when the file names them.
    if (defaultVibrationPattern_) return;

    const Object whenOff = file.objectForKey(vibrateWhenOffKey);
    vibrateWhenOff_ = whenOff ? whenOff.boolValue() : YES;

    if (const Object whenOn = file.objectForKey(vibrateWhenOnKey)) {
        vibrateWhenOn_ = whenOn.boolValue();
    } else {
        // Meant: without "vibrate-when-on" it is vibrateWhenOff that becomes YES, whatever the
        // file says of it, and vibrateWhenOn that is kept.
        vibrateWhenOff_ = YES;
    }
}

}  // namespace quillet
