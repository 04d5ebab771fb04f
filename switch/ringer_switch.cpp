// SPDX-License-Identifier: MIT
#include "switch/ringer_switch.h"

#include "platform/audio_toolbox.h"
#include "platform/bundle.h"
#include "platform/notification_center.h"
#include "platform/notify.h"
#include "platform/run_loop.h"
#include "platform/springboard_classes.h"
#include "prefs/prefs_loader.h"
#include "settings/ringtone_volume.h"
#include "settings/vibration.h"

namespace quillet {

namespace {

constexpr char ringerStateName[] = "com.apple.springboard.ringerstate";

/// Between turning an iPod on and setting its volume.
constexpr NSTimeInterval volumePause = 0.25;

/// Tells the panel only that something changed; the panel comes back for the state.
void ringerStateChanged(CFNotificationCenterRef /*center*/, void* /*observer*/,
                        CFStringRef /*name*/, const void* /*object*/,
                        CFDictionaryRef /*userInfo*/) {
    const auto panel = FSSwitchPanel::sharedPanel();
    const auto bundle = NSBundle::bundleForClass(RingerSwitch::classObject());
    panel.stateDidChangeForSwitchIdentifier(bundle.bundleIdentifier());
}

/// The nil rule for the one object that is a plain pointer: null answers NO.
template <BOOL (PrefsLoader::*choice)() const>
BOOL ask() {
    return _prefsLoader != nullptr ? (_prefsLoader->*choice)() : NO;
}

/// The indicator and the mute, whichever of them the host has.
void showAndMute(BOOL ringerOn) {
    const auto media = SBMediaController::classInHost();
    const auto indicator = SBRingerHUDController::classInHost();
    const BOOL activatesAtClass = indicator.respondsToSelector("activate:");
    (activatesAtClass ? indicator : indicator.sharedInstance()).activate(ringerOn);
    if (media.sharedInstance().respondsToSelector("setRingerMuted:")) {
        media.sharedInstance().setRingerMuted(!ringerOn);
    }
}

}  // namespace

void RingerSwitch::load() {
    _prefsLoader = new PrefsLoader;
    CFNotificationCenterAddObserver(CFNotificationCenterGetDarwinNotifyCenter(), nullptr,
                                    ringerStateChanged, NSString(ringerStateName), nullptr,
                                    CFNotificationSuspensionBehaviorCoalesce);
}

FSSwitchState RingerSwitch::stateForSwitchIdentifier(NSString /*identifier*/) {
    uint64_t word = 0;
    int token = NOTIFY_TOKEN_INVALID;
    if (notify_register_check(ringerStateName, &token) == NOTIFY_STATUS_OK) {
        int posted = 0;
        notify_check(token, &posted);
        notify_get_state(token, &word);
    }
    // Meant: also when no token was given; every question ends with a cancel.
    notify_cancel(token);
    return word == 1 ? FSSwitchStateOn : FSSwitchStateOff;
}

void RingerSwitch::applyState(FSSwitchState state, NSString /*forSwitchIdentifier*/) {
    if (state == FSSwitchStateIndeterminate) return;
    if (_prefsLoader != nullptr) _prefsLoader->loadPreferences();

    int token = NOTIFY_TOKEN_INVALID;
    // Meant: no cancel on this path, unlike in stateForSwitchIdentifier.
    if (notify_register_check(ringerStateName, &token) != NOTIFY_STATUS_OK) return;

    if (!ask<&PrefsLoader::defaultVibrationPattern>()) turnSpringBoardVibrationOff();

    // Meant: a value with no name is not stored, but it is posted and turns the ringer on.
    if (state == FSSwitchStateOff) notify_set_state(token, 0);
    if (state == FSSwitchStateOn) notify_set_state(token, 1);
    notify_post(ringerStateName);

    // Meant: the model is read afresh both times, whatever the state.
    const BOOL savesVolume = isiPod();
    if (savesVolume && state == FSSwitchStateOff) turnRingerVolumeOff();

    const BOOL ringerOn = state != FSSwitchStateOff;
    showAndMute(ringerOn);

    if (!ask<&PrefsLoader::defaultVibrationPattern>()) {
        restoreSpringBoardVibration();
        if (ringerOn ? ask<&PrefsLoader::vibrateWhenOn>() : ask<&PrefsLoader::vibrateWhenOff>()) {
            AudioServicesPlaySystemSound(kSystemSoundID_Vibrate);
        }
    }

    const BOOL restoresVolume = isiPod();
    if (restoresVolume && state == FSSwitchStateOn) {
        NSThread::sleepForTimeInterval(volumePause);
        restoreRingerVolume();
    }

    notify_cancel(token);
}

}  // namespace quillet
