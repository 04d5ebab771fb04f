// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <signal.h>

#include <filesystem>
#include <string>

#include "platform/standin/device/hardware.h"
#include "platform/standin/device/root.h"
#include "tests/springboard/springboard.h"

namespace quillet::test {
namespace {

namespace fs = std::filesystem;
using standin::DeviceRoot;
using standin::Dictionary;
using ::testing::HasSubstr;
using ::testing::Not;

constexpr char factsPath[] = "/var/db/device.plist";

class DeviceCommands : public SpringBoard {
protected:
    standin::Hardware hardware() const {
        return standin::Hardware{onDevice(DeviceRoot::hardwarePath)};
    }
    Outcome runOn(const fs::path& phone, Words words) {
        words.insert(words.begin(), {"--root", phone});
        return runBare({.words = words, .output = {}, .errors = {}});
    }
};

TEST_F(DeviceCommands, AModelIsWhatThePhoneIsFromThenOn) {
    expectOutput({"model"}, "iPhone6,1\n");
    expectOutput({"model", "iPod5,1"}, "");
    expectOutput({"model"}, "iPod5,1\n");
    expectOutput({"--json", "model"}, "{\"model\": \"iPod5,1\"}\n");
    hardware().setVolume("Ringtone", 0.6F);
    expectOutput({"flip", "off"}, "off\n");
    EXPECT_EQ(hardware().volume("Ringtone"), 0.0F);
    expectOutput({"flip", "on"}, "on\n");
    EXPECT_EQ(hardware().volume("Ringtone"), 0.6F) << "no command has to say what it is";
}

TEST_F(DeviceCommands, AnOptionIsForOneCommand) {
    expectOutput({"model", "iPod5,1"}, "");
    expectOutput({"--machine", "iPhone6,1", "flip", "off"}, "off\n");
    EXPECT_EQ(hardware().volume("Ringtone"), 0.75F);
    expectOutput({"model"}, "iPod5,1\n");
    expectOutput({"flip", "off"}, "off\n");
    EXPECT_EQ(hardware().volume("Ringtone"), 0.0F);
}

TEST_F(DeviceCommands, AHostIsWhatSpringBoardIsLikeFromThenOn) {
    expectOutput({"host"}, "indicator=class,media=instance\n");
    expectOutput({"host", "media=absent"}, "");
    expectOutput({"host"}, "indicator=class,media=absent\n");
    expectOutput({"flip", "off"}, "off\n");
    EXPECT_FALSE(hardware().isRingerMuted());
    expectOutput({"--host", "media=instance", "flip", "off"}, "off\n");
    EXPECT_TRUE(hardware().isRingerMuted()) << "for this command";
    expectOutput({"--json", "host"}, "{\"host\": \"indicator=class,media=absent\"}\n");
    expectFailure(run({"host", "loud"}), 2, "no such host variant: \"loud\"");
    expectFailure(run({"model", ""}), 2, "1 to 255 bytes");
}

TEST_F(DeviceCommands, NewMakesAPhoneThatIsWhatItIsToldToBe) {
    const fs::path made = folder() / "a" / "phone";
    const Outcome outcome =
        runBare({.words = {"new", "--machine", "iPod5,1", "--host", "indicator=deaf", made},
                 .output = {},
                 .errors = {}});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.errors, "New phone in " + made.string() + "\n");
    EXPECT_EQ(runOn(made, {"model"}).output, "iPod5,1\n");
    EXPECT_EQ(runOn(made, {"host"}).output, "indicator=deaf,media=instance\n");
    EXPECT_EQ(runOn(made, {"state"}).output, "on\n");
}

TEST_F(DeviceCommands, NewMakesNoPhoneOfOneOrOfAnythingElse) {
    expectOutput({"flip"}, "off\n");
    expectFailure(run({"new"}), 1, root().string() + ": a device is there");
    expectOutput({"state"}, "off\n");
    fs::create_directory(folder() / "documents");
    writeText(folder() / "documents" / "letter.txt", "Dear");
    expectFailure(run({"new", folder() / "documents"}), 1, "not a device root");
}

TEST_F(DeviceCommands, APhoneThatACommandMakesIsWhatThatCommandTakesItFor) {
    const fs::path made = folder() / "made";
    EXPECT_EQ(runOn(made, {"--machine", "iPod5,1", "flip", "off"}).status, 0);
    EXPECT_EQ(runOn(made, {"model"}).output, "iPod5,1\n");
}

TEST_F(DeviceCommands, ARootOfBeforeIsAPhoneOfTheDefaultModel) {
    fs::remove(onDevice(factsPath));
    expectOutput({"model"}, "iPhone6,1\n");
    expectOutput({"host"}, "indicator=class,media=instance\n");
    expectOutput({"model", "iPod5,1"}, "");
    expectOutput({"model"}, "iPod5,1\n");
}

TEST_F(DeviceCommands, ADeviceThatDoesNotTellWhatItIsIsNamed) {
    writeText(onDevice(factsPath), "junk");
    const std::string message = onDevice(factsPath).string() +
                                ": does not tell what the device is" +
                                ": line 1, column 1: text where a tag belongs\n";
    for (const char* const command : {"state", "flip", "model", "host"}) {
        expectFailure(run({command}), 1, message);
    }
    EXPECT_EQ(bytes(factsPath), "junk") << "and left as it is";
    write(factsPath, Dictionary{{"machine", false}});
    expectFailure(run({"model"}), 1, ": does not tell what the device is\n");
}

TEST_F(DeviceCommands, EraseMakesThePhoneNewAgainAndKeepsWhatItIs) {
    expectOutput({"model", "iPod5,1"}, "");
    expectOutput({"flip"}, "off\n");
    writeText(onDevice("/var/mobile/letter.txt"), "Dear");
    const Outcome outcome = run({"erase"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.errors, "New phone in " + root().string() + "\n");
    expectOutput({"state"}, "on\n");
    expectOutput({"model"}, "iPod5,1\n");
    EXPECT_EQ(hardware().volume("Ringtone"), 0.75F);
    EXPECT_EQ(dictionary(preferencesPath), (Dictionary{{"ios-vibrate-pattern", false},
                                                       {"vibrate-when-off", true},
                                                       {"vibrate-when-on", false}}));
    EXPECT_FALSE(fs::exists(onDevice("/var/mobile/letter.txt")));
}

TEST_F(DeviceCommands, EraseMendsADeviceThatHasLostOrDamagedItsOwnFiles) {
    const std::string lost = root().string() + ": the device has lost /var/run/notifications";
    fs::remove_all(onDevice("/var/run"));
    expectFailure(run({"state"}), 1, lost);
    EXPECT_EQ(run({"erase"}).status, 0);
    expectOutput({"state"}, "on\n");
    for (const char* const path : {factsPath, "/var/run/notifications", "/var/db/hardware.plist"}) {
        writeText(onDevice(path), "junk");
        EXPECT_EQ(run({"erase"}).status, 0) << path;
        expectOutput({"flip", "off"}, "off\n");
        EXPECT_TRUE(hardware().isRingerMuted());
    }
}

TEST_F(DeviceCommands, EraseErasesNothingButADevice) {
    const fs::path other = folder() / "documents";
    expectFailure(runOn(other, {"erase"}), 1, other.string() + ": no device is there");
    EXPECT_FALSE(fs::exists(other)) << "and makes none";
    fs::create_directory(other);
    writeText(other / "letter.txt", "Dear");
    expectFailure(runOn(other, {"erase"}), 1, other.string() + ": no device is there");
    EXPECT_EQ(readText(other / "letter.txt"), "Dear");
}

TEST_F(DeviceCommands, EraseWaitsForAFlipAndAFlipThatWaitedForItDoesNothing) {
    write(preferencesPath, Dictionary{{"ios-vibrate-pattern", false}});
    const auto begin = [this](Words words, const std::string& name) {
        words.insert(words.begin(), {"--root", root()});
        return start(QUILLET_SPRINGBOARD, {.words = words,
                                           .output = folder() / (name + ".output"),
                                           .errors = folder() / (name + ".errors")});
    };
    const auto errorsOf = [this](const std::string& name) {
        return readText(folder() / (name + ".errors"));
    };
    const pid_t flip = begin({"--trace", "flip", "off"}, "flip");
    EXPECT_TRUE(
        becomesTrue([&] { return errorsOf("flip").find("runUntilDate:") != std::string::npos; }));
    ::kill(flip, SIGSTOP);
    const pid_t erase = begin({"erase"}, "erase");
    EXPECT_TRUE(becomesTrue([&] { return !errorsOf("erase").empty(); }));
    EXPECT_THAT(errorsOf("erase"), HasSubstr("waiting for another flip"));
    EXPECT_THAT(errorsOf("erase"), Not(HasSubstr("New phone")));
    const pid_t late = begin({"flip", "off"}, "late");
    EXPECT_TRUE(becomesTrue([&] { return !errorsOf("late").empty(); }));
    ::kill(flip, SIGCONT);
    EXPECT_EQ(waitFor(flip), 0);
    const int erased = waitFor(erase);
    const int flipped = waitFor(late);
    EXPECT_EQ(erased, 0) << errorsOf("erase");
    // Whoever of the two had the turn first: the phone is new.
    EXPECT_TRUE(flipped == 0 || errorsOf("late").find("removed, replaced") != std::string::npos);
    expectOutput({"state"}, "on\n");
    EXPECT_FALSE(hardware().isRingerMuted());
}

}  // namespace
}  // namespace quillet::test
