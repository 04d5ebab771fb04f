// SPDX-License-Identifier: MIT
//
// What of all that happens to a device stands in its journal.
#include <gmock/gmock.h>

#include <filesystem>
#include <string>
#include <vector>

#include "platform/audio_toolbox.h"
#include "platform/celestial.h"
#include "platform/flipswitch.h"
#include "platform/notify.h"
#include "platform/property_list.h"
#include "platform/springboard_classes.h"
#include "platform/standin/device/device.h"
#include "platform/standin/device/journal_reader.h"
#include "platform/standin/device/vibration_settings.h"
#include "platform/standin/runtime/dictionary_file.h"
#include "tests/support/names.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/under_test.h"

namespace quillet::test {
namespace {

using standin::Device;
using standin::Dictionary;
using standin::JournalEntry;
using standin::VibrationSettings;
using ::testing::ElementsAre;

constexpr char ringKey[] = "ring-vibrate";
constexpr char silentKey[] = "silent-vibrate";

/// A device that a program uses which keeps a journal.
class DeviceJournal : public testing::Test {
protected:
    Device& device() { return device_; }

    /// What was told since the device began, each event with its details in one line.
    std::vector<std::string> told() {
        std::vector<std::string> lines;
        standin::JournalReader reader{device_.below(standin::DeviceRoot::journalPath)};
        for (const JournalEntry& entry : reader.read()) {
            std::string line = entry.event;
            for (const auto& [key, value] : entry.details) line += " " + key + "=" + value;
            if (entry.event != "made" && entry.event != "started") lines.push_back(line);
        }
        return lines;
    }

private:
    TemporaryFolder folder_;
    Device device_{{.root = folder_.path() / "root",
                    .clock = standin::Clock::Kind::virtualTime,
                    .author = {"program", "command"}}};
};

TEST_F(DeviceJournal, TellsWhatIsSetPostedShownHeardAndFelt) {
    int token = NOTIFY_TOKEN_INVALID;
    notify_register_check("a name", &token);
    notify_set_state(token, 7);
    notify_post("a name");
    SBRingerHUDController::classInHost().activate(1);
    SBMediaController::classInHost().sharedInstance().setRingerMuted(YES);
    AVSystemController::sharedAVSystemController().setVolumeTo(0.25F, "Ringtone");
    AudioServicesPlaySystemSound(kSystemSoundID_Vibrate);
    EXPECT_THAT(told(), ElementsAre("word-set name=a name word=7", "posted name=a name",
                                    "indicator state=1", "muted muted=1",
                                    "volume category=Ringtone volume=0.25", "buzz sound=4095"));
}

TEST_F(DeviceJournal, TellsWhenTheSwitchAsksForARefresh) {
    device().framework.load(bundleUnderTest());
    FSSwitchPanel::sharedPanel().stateDidChangeForSwitchIdentifier("no.such.switch");
    FSSwitchPanel::sharedPanel().stateDidChangeForSwitchIdentifier(switchIdentifier);
    EXPECT_THAT(told(), ElementsAre("refresh-asked", "refresh-asked", "refreshed state=1"));
}

TEST_F(DeviceJournal, TellsNothingOfWhatDidNotComeAbout) {
    std::filesystem::remove(device().below(standin::DeviceRoot::hardwarePath));
    SBMediaController::classInHost().sharedInstance().setRingerMuted(YES);
    AVSystemController::sharedAVSystemController().setVolumeTo(0.25F, "Ringtone");
    const auto settings = NSMutableDictionary::initWithContentsOfFile(VibrationSettings::path);
    EXPECT_EQ(settings.writeToFile("/absent/folder/file", YES), NO);
    EXPECT_THAT(told(), ElementsAre());
}

TEST_F(DeviceJournal, TellsWhatBecomesOfSpringBoardsVibrationSettings) {
    const auto path = device().below(VibrationSettings::path);
    const Dictionary before = {{ringKey, true}, {silentKey, standin::Array{}}};
    ASSERT_TRUE(standin::writeDictionary(path, before));
    const auto settings = NSMutableDictionary::initWithContentsOfFile(VibrationSettings::path);
    settings.setValue(NSNumber::numberWithBool(NO), ringKey);
    settings.setValue(NSNumber{}, silentKey);
    EXPECT_EQ(settings.writeToFile(VibrationSettings::path, YES), YES);
    std::filesystem::remove(path);
    EXPECT_EQ(settings.writeToFile(VibrationSettings::path, YES), YES);
    EXPECT_EQ(settings.writeToFile("/var/mobile/another.plist", YES), YES);
    EXPECT_THAT(told(), ElementsAre("vibration-settings ring=false silent=absent ring-before=true "
                                    "silent-before=odd",
                                    "vibration-settings ring=false silent=absent "
                                    "ring-before=absent silent-before=absent"));
}

}  // namespace
}  // namespace quillet::test
