// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>

#include <filesystem>
#include <optional>
#include <string>

#include "platform/standin/device/hardware.h"
#include "platform/standin/device/root.h"
#include "platform/standin/plist/readings.h"
#include "tests/springboard/springboard.h"
#include "tests/support/values.h"

namespace quillet::test {
namespace {

namespace fs = std::filesystem;
using standin::Array;
using standin::Dictionary;
using standin::Value;

class Commands : public SpringBoard {
protected:
    standin::Hardware hardware() const {
        return standin::Hardware{onDevice(standin::DeviceRoot::hardwarePath)};
    }

    std::optional<float> keptVolume() const {
        const Dictionary preferences = dictionary(preferencesPath);
        const auto volume = preferences.find("ringtone-volume");
        return volume ? standin::floatValue(*volume) : std::nullopt;
    }

    Outcome runWith(const Words& environment, const Words& unset, const Words& words) {
        return runBare({.words = words,
                        .environment = environment,
                        .unset = unset,
                        .output = {},
                        .errors = {}});
    }
};

TEST_F(Commands, ANewDeviceIsOn) { expectOutput({"state"}, "on\n"); }

TEST_F(Commands, FlipTapsTheSwitch) {
    expectOutput({"flip"}, "off\n");
    expectOutput({"state"}, "off\n");
    expectOutput({"flip"}, "on\n");
    expectOutput({"state"}, "on\n");
}

TEST_F(Commands, FlipOnAndOffApplyThatStateWhateverItWas) {
    for (const char* const state : {"off", "off", "on", "on", "off"}) {
        expectOutput({"flip", state}, std::string{state} + "\n");
        EXPECT_EQ(hardware().isRingerMuted(), std::string{state} == "off") << state;
    }
}

TEST_F(Commands, ApplyStoresOnlyOneAndZero) {
    expectOutput({"apply", "0"}, "off\n");
    for (const char* const number : {"2", "-2", "127", "-1", "-2147483648", "2147483647"}) {
        expectOutput({"apply", number}, "off\n");
    }
    expectOutput({"apply", "1"}, "on\n");
    for (const char* const number : {"2", "-2", "127", "-1", "-2147483648", "2147483647"}) {
        expectOutput({"apply", number}, "on\n");
    }
}

TEST_F(Commands, ApplyOfAnyNumberButZeroAndMinusOneUnmutes) {
    for (const char* const number : {"1", "2", "-2", "127", "-2147483648", "2147483647", "+1"}) {
        hardware().setRingerMuted(true);
        run({"apply", number});
        EXPECT_FALSE(hardware().isRingerMuted()) << number;
    }
    hardware().setRingerMuted(true);
    run({"apply", "-1"});
    EXPECT_TRUE(hardware().isRingerMuted()) << "asks for no change";
    hardware().setRingerMuted(false);
    run({"apply", "-0"});
    EXPECT_TRUE(hardware().isRingerMuted());
}

TEST_F(Commands, StatesAreJSONObjectsOnRequest) {
    expectOutput({"--json", "state"}, "{\"state\": \"on\"}\n");
    expectOutput({"--json", "flip"}, "{\"state\": \"off\"}\n");
    expectOutput({"--json", "apply", "1"}, "{\"state\": \"on\"}\n");
}

TEST_F(Commands, AnIPodKeepsItsVolumeWhileItIsMuted) {
    hardware().setVolume("Ringtone", 0.6F);
    expectOutput({"--machine", "iPod5,1", "flip", "off"}, "off\n");
    EXPECT_EQ(hardware().volume("Ringtone"), 0.0F);
    EXPECT_EQ(keptVolume(), 0.6F);
    expectOutput({"--machine", "iPod5,1", "flip", "on"}, "on\n");
    EXPECT_EQ(hardware().volume("Ringtone"), 0.6F);
    EXPECT_EQ(keptVolume(), 0.6F);
}

TEST_F(Commands, OtherModelsLeaveTheVolume) {
    for (const char* const machine : {"iPhone6,1", "iPad4,1", "ipod5,1"}) {
        expectOutput({"--machine", machine, "flip", "off"}, "off\n");
        EXPECT_EQ(hardware().volume("Ringtone"), 0.75F) << machine;
        expectOutput({"--machine", machine, "flip", "on"}, "on\n");
    }
    EXPECT_EQ(keptVolume(), std::nullopt);
    expectOutput({"flip", "off"}, "off\n");
    EXPECT_EQ(hardware().volume("Ringtone"), 0.75F) << "the default model is a phone";
}

TEST_F(Commands, AHostWithoutAMediaControllerIsNotMuted) {
    expectOutput({"--host", "media=absent", "flip", "off"}, "off\n");
    EXPECT_FALSE(hardware().isRingerMuted());
    expectOutput({"flip", "off"}, "off\n");
    EXPECT_TRUE(hardware().isRingerMuted());
}

TEST_F(Commands, TheSwitchsOwnVibrationPutsTheSystemsSettingsBackAfterASecond) {
    write(preferencesPath, Dictionary{{"ios-vibrate-pattern", false}});
    const Dictionary before = dictionary(springBoardPreferencesPath);
    expectOutput({"flip"}, "off\n");
    EXPECT_EQ(dictionary(springBoardPreferencesPath), before);
}

TEST_F(Commands, ARootIsMadeWhereThereIsNone) {
    const fs::path made = folder() / "a" / "new" / "root";
    const Outcome outcome = runWith({}, {}, {"--root", made, "state"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output, "on\n");
    EXPECT_EQ(outcome.errors, "New phone in " + made.string() + "\n");
    EXPECT_TRUE(fs::exists(made.string() + preferencesPath));
    EXPECT_EQ(runWith({}, {}, {"--root", made, "state"}).errors, "") << "it is new once";
}

TEST_F(Commands, WithoutARootTheDeviceIsTheOneOfTheEnvironment) {
    const std::string named = folder() / "named";
    const std::string home = folder() / "home";
    EXPECT_EQ(runWith({"QUILLET_ROOT=" + named, "HOME=" + home}, {}, {"state"}).output, "on\n");
    EXPECT_TRUE(fs::exists(named + preferencesPath));
    EXPECT_FALSE(fs::exists(home));
}

TEST_F(Commands, WithoutARootTheDeviceIsInTheUsersStateFolder) {
    const std::string state = folder() / "state";
    const std::string home = folder() / "home";
    EXPECT_EQ(runWith({"XDG_STATE_HOME=" + state, "HOME=" + home}, {}, {"state"}).output, "on\n");
    EXPECT_TRUE(fs::exists(state + "/quillet/device" + preferencesPath));
    EXPECT_FALSE(fs::exists(home));
}

TEST_F(Commands, WithoutAStateFolderTheDeviceIsBelowTheHomeFolder) {
    const std::string home = folder() / "home";
    EXPECT_EQ(runWith({"HOME=" + home}, {"XDG_STATE_HOME"}, {"state"}).output, "on\n");
    EXPECT_TRUE(fs::exists(home + "/.local/state/quillet/device" + preferencesPath));
    for (const char* const ignored : {"XDG_STATE_HOME=", "XDG_STATE_HOME=relative/folder"}) {
        const std::string other = folder() / "other";
        const Outcome outcome = runBare({.words = {"state"},
                                         .environment = {ignored, "HOME=" + other},
                                         .output = {},
                                         .errors = {},
                                         .folder = folder()});
        EXPECT_EQ(outcome.output, "on\n") << ignored << outcome.errors;
        EXPECT_TRUE(fs::exists(other + "/.local/state/quillet/device" + preferencesPath))
            << ignored;
        EXPECT_FALSE(fs::exists(folder() / "relative")) << ignored;
        fs::remove_all(other);
    }
}

TEST_F(Commands, WithoutAnyFolderOfTheUsersARootMustBeGiven) {
    expectFailure(runWith({}, {"XDG_STATE_HOME", "HOME"}, {"state"}), 2, "no --root given");
    expectFailure(runWith({"HOME=relative"}, {"XDG_STATE_HOME"}, {"state"}), 2, "no --root given");
    const Outcome outcome = runWith({}, {"XDG_STATE_HOME", "HOME"}, {"--root", root(), "state"});
    EXPECT_EQ(outcome.output, "on\n");
}

TEST_F(Commands, ARootThatCannotBeUsedIsNamed) {
    const fs::path other = folder() / "documents";
    fs::create_directory(other);
    writeText(other / "letter.txt", "Dear");
    expectFailure(runWith({}, {}, {"--root", other, "state"}), 1, other);
    expectFailure(runWith({}, {}, {"--root", other / "letter.txt", "state"}), 1, "letter.txt");
    expectFailure(runWith({}, {}, {"--root", "/dev/null/root", "state"}), 1,
                  "/dev/null/root: no device can be made of it: Not a directory");
    EXPECT_EQ(readText(other / "letter.txt"), "Dear");
}

TEST_F(Commands, ATableOfNotificationsThatIsBrokenIsNamed) {
    writeText(onDevice("/var/run/notifications"), "broken");
    expectFailure(run({"state"}), 1, "not a table of notifications");
    EXPECT_EQ(bytes("/var/run/notifications"), "broken");
}

TEST_F(Commands, ABundleThatCannotBeLoadedIsNamed) {
    expectFailure(run({"--bundle", folder() / "No.bundle", "state"}), 1, "No.bundle");
    const fs::path broken = folder() / "Broken.bundle";
    fs::copy(QUILLET_BUNDLE, broken, fs::copy_options::recursive);
    writeText(broken / "Quillet", "no module");
    expectFailure(run({"--bundle", broken, "flip"}), 1, "Broken.bundle");
    writeText(broken / "Info.plist", "no property list");
    expectFailure(run({"--bundle", broken, "flip"}), 1, "Broken.bundle");
    expectOutput({"state"}, "on\n");
}

TEST_F(Commands, ABundleElsewhereIsLoadedFromThere) {
    const fs::path copy = folder() / "Copy.bundle";
    fs::copy(QUILLET_BUNDLE, copy, fs::copy_options::recursive);
    expectOutput({"--bundle", copy, "flip"}, "off\n");
    const Outcome outcome = runBare({.words = {"--root", "root", "--bundle", "Copy.bundle", "flip"},
                                     .output = {},
                                     .errors = {},
                                     .folder = folder()});
    EXPECT_EQ(outcome.output, "on\n") << outcome.errors;
}

TEST_F(Commands, APreferenceOfAnOddKindEndsTheProgramAndChangesNoFile) {
    write(preferencesPath, Dictionary{{"ios-vibrate-pattern", Array{}}});
    const char* const files[] = {preferencesPath, springBoardPreferencesPath,
                                 "/var/db/hardware.plist", "/var/run/notifications"};
    Words before;
    for (const char* const file : files) before.push_back(bytes(file));
    expectFailure(run({"flip"}), 1, "<NSArray>: unrecognized selector \"boolValue\"");
    for (std::size_t i = 0; i < before.size(); ++i)
        EXPECT_EQ(bytes(files[i]), before[i]) << files[i];
    expectOutput({"state"}, "on\n");
}

}  // namespace
}  // namespace quillet::test
