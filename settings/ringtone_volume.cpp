// SPDX-License-Identifier: MIT
#include "settings/ringtone_volume.h"

#include "platform/celestial.h"
#include "platform/property_list.h"
#include "platform/system.h"
#include "prefs/prefs_loader.h"

namespace quillet {

namespace {

constexpr char ringtoneCategory[] = "Ringtone";

/// Its own function so that the dictionary is released before the volume changes.
void keepVolume() {
    const auto preferences = NSFileManager::defaultManager().fileExistsAtPath(preferencesPath)
                                 ? NSMutableDictionary::initWithContentsOfFile(preferencesPath)
                                 : NSMutableDictionary::init();
    float volume = 0.0F;
    AVSystemController::sharedAVSystemController().getVolume(&volume, ringtoneCategory);
    preferences.setObject(NSNumber::numberWithFloat(volume), ringtoneVolumeKey);
    preferences.writeToFile(preferencesPath, YES);
}

}  // namespace

BOOL isiPod() {
    utsname device = {};
    uname(&device);
    return strstr(device.machine, "iPod") != nullptr;
}

void turnRingerVolumeOff() {
    // Meant: no test whether a volume is kept already; a second turn-off keeps 0.0.
    keepVolume();
    AVSystemController::sharedAVSystemController().setVolumeTo(0.0F, ringtoneCategory);
}

void restoreRingerVolume() {
    const auto preferences = NSDictionary::initWithContentsOfFile(preferencesPath);
    // Meant: 1.0 only without a file; a file without the key reads as 0.0.
    const float volume =
        preferences ? preferences.objectForKey(ringtoneVolumeKey).floatValue() : 1.0F;
    AVSystemController::sharedAVSystemController().setVolumeTo(volume, ringtoneCategory);
}

}  // namespace quillet
