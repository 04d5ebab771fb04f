// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>

#include <regex>
#include <string>

#include "platform/standin/device/hardware.h"
#include "platform/standin/device/root.h"
#include "springboard/host_process.h"
#include "tests/springboard/springboard.h"

namespace quillet::test {
namespace {

using standin::Dictionary;
using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

/// What --explain tells, on a device whose switch vibrates itself.
class StoryOfAFlip : public SpringBoard {
protected:
    StoryOfAFlip() {
        write(preferencesPath, Dictionary{{"ios-vibrate-pattern", false},
                                          {"vibrate-when-off", true},
                                          {"vibrate-when-on", false}});
    }

    /// In virtual time: the waits take none.
    std::string toldOf(std::optional<std::int32_t> state, const std::string& machine = "iPhone6,1",
                       const standin::HostVariant& host = {}) {
        Options options;
        options.root = root();
        options.bundle = QUILLET_BUNDLE;
        options.machine = machine;
        options.host = host;
        options.clock = standin::Clock::Kind::virtualTime;
        options.explains = true;
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        HostProcess{options}.apply(state);
        testing::internal::GetCapturedStdout();
        return testing::internal::GetCapturedStderr();
    }
};

TEST_F(StoryOfAFlip, SaysWhatDecidesEachStepWithItsTimeAndWhatCameOfIt) {
    EXPECT_EQ(toldOf(0), R"(What decides:
  iPhone6,1            no iPod: the ringtone volume stays as it is
  ios-vibrate-pattern  no: the switch vibrates in SpringBoard's place
  vibrate-when-off     yes: it buzzes when muted
  vibrate-when-on      no: it does not buzz when unmuted
What happens:
      0.0 ms  vibration settings off (before: ring on, silent on), announced
      0.0 ms  .-- waits for SpringBoard to take that over
    500.0 ms  '-- 500.0 ms later
    500.0 ms  state "off" stored and posted
    500.0 ms  indicator shown: muted
    500.0 ms  ringer muted
    500.0 ms  vibration settings back: ring on, silent on, announced
    500.0 ms  .-- waits for SpringBoard to take that over
    500.0 ms  |   the post comes back: the panel asks, and is told "off"
   1000.0 ms  '-- 500.0 ms later
   1000.0 ms  buzz
Now: off, ringer muted, volume 0.75, vibration: ring on, silent on
Left behind: nothing
)");
}

TEST_F(StoryOfAFlip, OfAnIPodHasItsVolumeAndTheSleepBeforeItComesBack) {
    EXPECT_THAT(toldOf(0, "iPod5,1"),
                AllOf(HasSubstr("  iPod5,1              an iPod: the ringtone volume is kept"),
                      HasSubstr("    500.0 ms  ringtone volume 0.75 kept in the preferences\n"
                                "    500.0 ms  ringtone volume set to 0\n"),
                      HasSubstr("Left behind: ringtone-volume 0.75 (was absent)\n")));
    EXPECT_THAT(toldOf(1, "iPod5,1"),
                AllOf(HasSubstr("   1000.0 ms  .-- sleeps before it sets the volume\n"
                                "   1250.0 ms  '-- 250.0 ms later\n"
                                "   1250.0 ms  ringtone volume set to 0.75\n"),
                      Not(HasSubstr("buzz\n")), HasSubstr("Left behind: nothing\n")));
}

TEST_F(StoryOfAFlip, WithTheSystemsVibrationIsShortAndTheRefreshComesAfterIt) {
    write(preferencesPath, Dictionary{{"ios-vibrate-pattern", true}});
    const std::string story = toldOf(1);
    EXPECT_THAT(story, HasSubstr("  ios-vibrate-pattern  yes: vibration is left to the system\n"
                                 "What happens:\n"
                                 "      0.0 ms  state \"on\" stored and posted\n"));
    EXPECT_THAT(story,
                HasSubstr("  the post comes back: the panel asks, and is told \"on\"\nNow:"));
    EXPECT_THAT(story, Not(HasSubstr("waits")));
}

TEST_F(StoryOfAFlip, TellsAnAbsentPreferenceFromAFalseOne) {
    write(preferencesPath, Dictionary{{"ios-vibrate-pattern", false}});
    EXPECT_THAT(toldOf(1),
                AllOf(HasSubstr("  vibrate-when-off     absent: it buzzes when muted\n"),
                      HasSubstr("  vibrate-when-on      absent: as before when unmuted")));
    std::filesystem::remove(onDevice(preferencesPath));
    EXPECT_THAT(toldOf(1), HasSubstr("  no preferences       nothing to be read"));
}

TEST_F(StoryOfAFlip, SaysWhatTheHostLeftOutAndWhatStaysBehind) {
    write(springBoardPreferencesPath, Dictionary{{"silent-vibrate", false}});
    const standin::HostVariant none{standin::HostVariant::Indicator::absent,
                                    standin::HostVariant::Media::deaf};
    const std::string story = toldOf(0, "iPhone6,1", none);
    EXPECT_THAT(story, AllOf(HasSubstr("No indicator was shown"), HasSubstr("The mute was left"),
                             HasSubstr("Left behind: ring-vibrate on (was absent)\n")));
    std::filesystem::remove(onDevice(springBoardPreferencesPath));
    EXPECT_THAT(toldOf(0), HasSubstr("SpringBoard has no file of settings to change, announced"));
}

TEST_F(StoryOfAFlip, OfAnApplyThatAsksForNothingSaysSo) {
    EXPECT_THAT(toldOf(-1), HasSubstr("\nNothing was asked for, and nothing done.\nNow: on, "));
}

TEST_F(StoryOfAFlip, GoesToStandardErrorAndTheBareWordToStandardOutput) {
    write(preferencesPath, Dictionary{});
    const Outcome outcome = run({"flip", "--explain"});
    EXPECT_EQ(outcome.output, "off\n");
    EXPECT_THAT(outcome.errors, StartsWith("What decides:\n"));
    for (const std::string& line : linesOf(outcome.errors)) EXPECT_LE(line.size(), 80U) << line;
    EXPECT_THAT(run({"apply", "1", "--explain", "--color=always"}).errors,
                AllOf(StartsWith("\033[1mWhat decides:\033[m\n"), HasSubstr("\033[2m")));
}

TEST_F(StoryOfAFlip, IsALineOnATerminalAndNothingElsewhere) {
    write(preferencesPath, Dictionary{});
    const auto onATerminal = [&](const std::string& words) {
        return runInShell("script -qec '" QUILLET_SPRINGBOARD " --root \"" + root().string() +
                          "\" " + words + "' /dev/null | tr -d '\\r'")
            .output;
    };
    EXPECT_TRUE(std::regex_match(
        onATerminal("flip"),
        std::regex{"off\nThe ringer is muted; it did not buzz. It took [0-9.]+ m?s.\n"}));
    EXPECT_EQ(onATerminal("apply 1"), "on\n");
    EXPECT_EQ(onATerminal("state"), "on\n");
    expectOutput({"flip"}, "off\n");
}

}  // namespace
}  // namespace quillet::test
