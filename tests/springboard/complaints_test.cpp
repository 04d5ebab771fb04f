// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>

#include <filesystem>
#include <string>

#include "platform/standin/device/root.h"
#include "tests/springboard/looking.h"

namespace quillet::test {
namespace {

namespace fs = std::filesystem;
using standin::Dictionary;
using ::testing::Contains;
using ::testing::HasSubstr;
using ::testing::Not;

class HostComplaints : public Looking {};

TEST_F(HostComplaints, AreOfHardwareThatCannotBeReadOrLocked) {
    const auto expectComplaint = [this](const std::string& complaint) {
        const Outcome outcome = run({"--trace", "--trace-format=text", "flip", "off"});
        EXPECT_EQ(outcome.status, 1);
        EXPECT_EQ(outcome.output, "off\n") << "the switch has done its part";
        EXPECT_THAT(outcome.errors, HasSubstr("springboard: " + root().string() + complaint));
        EXPECT_THAT(outcome.errors, HasSubstr("setRingerMuted:true  (not done)\n"));
        EXPECT_THAT(eventsIn(run({"--json", "log", "--last", "1h"}).output),
                    Not(Contains("muted")));
    };
    const std::string before = bytes(standin::DeviceRoot::hardwarePath);
    writeText(onDevice(standin::DeviceRoot::hardwarePath), "junk");
    expectComplaint("/var/db/hardware.plist: cannot be read: line 1, column 1: text where ");
    EXPECT_EQ(bytes(standin::DeviceRoot::hardwarePath), "junk");
    EXPECT_EQ(run({"status"}).status, 1);
    fs::remove(onDevice(standin::DeviceRoot::hardwarePath));
    fs::create_directory(onDevice(standin::DeviceRoot::hardwarePath));
    expectComplaint("/var/db/hardware.plist: cannot be read: not a file");
    fs::remove(onDevice(standin::DeviceRoot::hardwarePath));
    writeText(onDevice(standin::DeviceRoot::hardwarePath), before);
    fs::remove(onDevice("/var/db/hardware.plist.lock"));
    fs::create_directory(onDevice("/var/db/hardware.plist.lock"));
    expectComplaint("/var/db/hardware.plist.lock: no lock: Is a directory");
}

TEST_F(HostComplaints, NameThePlaceOfTheFaultInSettingsThatCountAsNone) {
    const auto expectMention = [this](const char* path, const std::string& place) {
        for (const char* const command : {"flip", "status"}) {
            const Outcome outcome = run({command});
            EXPECT_EQ(outcome.status, 0) << "a device goes on without them";
            EXPECT_EQ(outcome.errors, "springboard: " + onDevice(path).string() +
                                          ": counts as no file: " + place + '\n');
        }
    };
    write(preferencesPath, Dictionary{{"ios-vibrate-pattern", false}});
    writeText(onDevice(springBoardPreferencesPath), "bplist00");
    expectMention(springBoardPreferencesPath, "offset 0: a trailer that does not fit the file");
    write(springBoardPreferencesPath, Dictionary{{"ring-vibrate", true}});
    writeText(onDevice(preferencesPath), "<dict>\n<key>vibrate-when-on</key></dict>");
    expectMention(preferencesPath, "line 2, column 27: a key without a value");
}

TEST_F(HostComplaints, AreOfHardwareThatIsMissingAndMadeAgainAsTheStateSays) {
    expectOutput({"flip", "off"}, "off\n");
    fs::remove_all(onDevice("/var/db"));
    const Outcome outcome = run({"state"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.output, "off\n");
    EXPECT_THAT(outcome.errors, HasSubstr("hardware.plist: was missing; made again"));
    EXPECT_EQ(dictionary(standin::DeviceRoot::hardwarePath).find("ringer-muted"),
              standin::Value{true});
    expectOutput({"flip", "on"}, "on\n");
    EXPECT_EQ(dictionary(standin::DeviceRoot::hardwarePath).find("ringer-muted"),
              standin::Value{false});
}

TEST_F(HostComplaints, NameAPreferenceOfAnOddKindWithItsFileAndKey) {
    write(preferencesPath, Dictionary{{"ios-vibrate-pattern", standin::Array{}}});
    expectFailure(run({"flip"}), 1,
                  std::string{preferencesPath} + ": \"ios-vibrate-pattern\" is an array");
}

TEST_F(HostComplaints, AreObjectsOnRequest) {
    const auto expectError = [](const Outcome& outcome, int status, const std::string& message) {
        EXPECT_EQ(outcome.status, status);
        const Json error = Json::parse(outcome.errors);
        EXPECT_EQ(error["event"], "error");
        EXPECT_THAT(error["message"].get<std::string>(), HasSubstr(message));
        EXPECT_EQ(error["program"], "springboard");
        EXPECT_TRUE(error.contains("time") && error.contains("pid"));
    };
    expectError(run({"--json", "sing"}), 2, "no such command");
    writeText(onDevice(standin::DeviceRoot::hardwarePath), "junk");
    expectError(run({"--json", "flip"}), 1, "hardware.plist: cannot be read: line 1, column 1");
    fs::remove(onDevice("/var/run/notifications"));
    expectError(run({"--json", "state"}), 1, "has lost /var/run/notifications");
}

}  // namespace
}  // namespace quillet::test
