// SPDX-License-Identifier: MIT
#include "platform/standin/device/hardware.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/file.h>
#include <sys/syscall.h>

#include <cerrno>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <limits>
#include <string>
#include <thread>
#include <utility>

#include "platform/celestial.h"
#include "platform/standin/files/descriptor.h"
#include "platform/standin/files/file.h"
#include "platform/standin/plist/property_list.h"
#include "tests/standin/on_a_device.h"
#include "tests/support/supervisor.h"
#include "tests/support/traced.h"
#include "tests/support/values.h"

namespace quillet::test {
namespace {

namespace fs = std::filesystem;
using standin::Array;
using standin::Dictionary;
using standin::Hardware;
using standin::Value;
using ::testing::ElementsAre;

class HardwareFile : public testing::Test {
protected:
    HardwareFile() { write(Hardware::newState()); }

    fs::path path() const { return folder_.path() / "hardware.plist"; }
    Hardware hardware() const { return Hardware{path()}; }
    std::string bytes() const { return standin::readFile(path()).value_or("(none)"); }
    void write(const std::string& text) const { std::ofstream{path(), std::ios::binary} << text; }
    void write(const Value& value) const { write(standin::writePropertyList(value)); }

    void expectUseless() const {
        const std::string before = bytes();
        EXPECT_EQ(hardware().volume("Ringtone"), std::nullopt);
        EXPECT_FALSE(hardware().setVolume("Ringtone", 0.5F));
        EXPECT_FALSE(hardware().isRingerMuted());
        hardware().setRingerMuted(true);
        EXPECT_EQ(bytes(), before) << "what cannot be read is not overwritten";
    }

private:
    TemporaryFolder folder_;
};

TEST_F(HardwareFile, ANewDeviceIsNotMutedAndHasARingtoneVolume) {
    EXPECT_EQ(hardware().volume("Ringtone"), 0.75F);
    EXPECT_FALSE(hardware().isRingerMuted());
}

TEST_F(HardwareFile, AVolumeIsKeptToTheLastBit) {
    for (const float volume : {0.6F, 0.1F, 1e-30F, std::nextafter(1.0F, 0.0F),
                               std::numeric_limits<float>::denorm_min()}) {
        EXPECT_TRUE(hardware().setVolume("Ringtone", volume)) << volume;
        EXPECT_EQ(hardware().volume("Ringtone"), volume);
    }
}

TEST_F(HardwareFile, AVolumeIsBroughtIntoItsRange) {
    constexpr float infinity = std::numeric_limits<float>::infinity();
    const std::pair<float, float> rows[] = {
        {0.0F, 0.0F},      {1.0F, 1.0F},          {-0.0F, 0.0F},
        {-0.1F, 0.0F},     {1.1F, 1.0F},          {infinity, 1.0F},
        {-infinity, 0.0F}, {std::nanf(""), 0.0F}, {std::numeric_limits<float>::lowest(), 0.0F},
    };
    for (const auto& [given, kept] : rows) {
        EXPECT_TRUE(hardware().setVolume("Ringtone", given)) << given;
        EXPECT_EQ(hardware().volume("Ringtone"), kept) << given;
    }
}

TEST_F(HardwareFile, AVolumeInTheFileThatIsOutOfRangeIsReadInsideIt) {
    const std::pair<Value, float> rows[] = {
        {7.0, 1.0F}, {-7.0, 0.0F}, {std::numeric_limits<double>::quiet_NaN(), 0.0F}, {true, 1.0F}};
    for (const auto& [stored, read] : rows) {
        write(Dictionary{{"volumes", Dictionary{{"Ringtone", stored}}}});
        EXPECT_EQ(hardware().volume("Ringtone"), read) << testing::PrintToString(stored);
    }
}

TEST_F(HardwareFile, AnUnknownCategoryHasNoVolumeAndGetsNone) {
    const std::string before = bytes();
    for (const char* const category : {"Alarm", "ringtone", "Ringtone ", ""}) {
        EXPECT_EQ(hardware().volume(category), std::nullopt) << category;
        EXPECT_FALSE(hardware().setVolume(category, 0.5F)) << category;
    }
    EXPECT_EQ(bytes(), before);
}

TEST_F(HardwareFile, SettingOneThingKeepsTheOthers) {
    write(Dictionary{{"ringer-muted", true},
                     {"serial", std::string{"QX1"}},
                     {"volumes", Dictionary{{"Alarm", 0.25}, {"Ringtone", 0.5}}}});
    EXPECT_TRUE(hardware().setVolume("Ringtone", 1.0F));
    EXPECT_TRUE(hardware().isRingerMuted());
    EXPECT_EQ(hardware().volume("Alarm"), 0.25F);
    hardware().setRingerMuted(false);
    EXPECT_EQ(standin::readPropertyList(bytes()),
              Value(Dictionary{{"ringer-muted", false},
                               {"serial", std::string{"QX1"}},
                               {"volumes", Dictionary{{"Alarm", 0.25}, {"Ringtone", 1.0}}}}));
}

TEST_F(HardwareFile, AFileThatCannotBeReadGivesNothingAndIsLeftAsItIs) {
    for (const char* const broken : {"", "no property list", "<plist version=\"1.0\"><dict>"}) {
        SCOPED_TRACE(testing::PrintToString(broken));
        write(std::string{broken});
        expectUseless();
    }
    write(Value{Array{}});
    expectUseless();
}

TEST_F(HardwareFile, WithoutAFileThereIsNothingAndNoneIsMade) {
    fs::remove(path());
    expectUseless();
    EXPECT_FALSE(fs::exists(path()));
}

TEST_F(HardwareFile, ThatCannotBeLockedIsLeftAsItIs) {
    const std::string before = bytes();
    const auto change = [this] {
        EXPECT_FALSE(hardware().setVolume("Ringtone", 0.25F));
        hardware().setRingerMuted(true);
        return 0;
    };
    supervise({SYS_flock}, change, [](const SupervisedCall&) {
        return Verdict{Verdict::Kind::fails, ENOLCK};
    });
    EXPECT_EQ(bytes(), before);
}

TEST_F(HardwareFile, IsNotHeldUpByThoseWhoMayReadItsFolder) {
    const standin::Descriptor folder{::open(path().parent_path().c_str(), O_RDONLY)};
    ASSERT_EQ(::flock(folder.number(), LOCK_EX), 0);
    EXPECT_TRUE(hardware().setVolume("Ringtone", 0.25F));
    const auto lock = fs::status(path().string() + ".lock").permissions();
    EXPECT_EQ(lock, fs::perms{0600}) << "nobody else may open what is locked";
}

TEST_F(HardwareFile, IsChangedByOneThreadAtATime) {
    write(Dictionary{{"volumes", Dictionary{{"Alarm", 1.0}, {"Ringtone", 1.0}}}});
    constexpr int rounds = 100;
    const auto lower = [this](const char* category) {
        for (int round = rounds - 1; round >= 0; --round) {
            EXPECT_TRUE(hardware().setVolume(category, static_cast<float>(round) / rounds));
        }
    };
    std::thread other{lower, "Alarm"};
    lower("Ringtone");
    other.join();
    EXPECT_EQ(hardware().volume("Alarm"), 0.0F);
    EXPECT_EQ(hardware().volume("Ringtone"), 0.0F);
}

TEST_F(HardwareFile, IsChangedByOneProcessAtATime) {
    write(Dictionary{{"volumes", Dictionary{{"Alarm", 1.0}, {"Ringtone", 1.0}}}});
    Traced first = traced([this] { hardware().setVolume("Alarm", 0); });
    Traced second = traced([this] { hardware().setVolume("Ringtone", 0); });
    for (Traced* const writer : {&first, &second}) {
        // To where it puts a new file in place, which the second does not come to.
        while (writer->nextCall() && writer->call() != SYS_rename &&
               writer->call() != SYS_clock_nanosleep) {
        }
    }
    EXPECT_EQ(first.call(), SYS_rename);
    EXPECT_EQ(second.call(), SYS_clock_nanosleep) << "it waits for its turn";
    first.end();
    second.end();
    EXPECT_EQ(hardware().volume("Alarm"), 0.0F);
    EXPECT_EQ(hardware().volume("Ringtone"), 0.0F);
}

TEST_F(HardwareFile, ValuesOfOddKindsCountAsNone) {
    write(Dictionary{{"ringer-muted", Array{}}, {"volumes", Array{}}});
    EXPECT_FALSE(hardware().isRingerMuted());
    EXPECT_EQ(hardware().volume("Ringtone"), std::nullopt);
    write(Dictionary{{"volumes", Dictionary{{"Ringtone", Array{}}}}});
    EXPECT_EQ(hardware().volume("Ringtone"), std::nullopt);
}

TEST(HardwareOfADevice, OutlivesTheProcessesThatUseIt) {
    const TemporaryFolder folder;
    const standin::DeviceOptions options = {.root = folder.path() / "root"};
    {
        standin::Device device{options};
        device.hardware.setRingerMuted(true);
        EXPECT_TRUE(device.hardware.setVolume("Ringtone", 0.25F));
    }
    standin::Device device{options};
    EXPECT_TRUE(device.hardware.isRingerMuted());
    EXPECT_EQ(device.hardware.volume("Ringtone"), 0.25F);
}

class VolumeController : public OnADevice {
protected:
    AVSystemController controller() { return AVSystemController::sharedAVSystemController(); }
};

TEST_F(VolumeController, GetsAndSetsTheDevicesVolume) {
    EXPECT_EQ(controller().setVolumeTo(0.6F, "Ringtone"), YES);
    float volume = -1;
    EXPECT_EQ(controller().getVolume(&volume, "Ringtone"), YES);
    EXPECT_EQ(volume, 0.6F);
    EXPECT_EQ(device().hardware.volume("Ringtone"), 0.6F);
    const std::string shared =
        R"(AVSystemController sharedAVSystemController() = "<AVSystemController>")";
    EXPECT_THAT(calls(), ElementsAre(shared,
                                     R"(<AVSystemController> setVolumeTo:forCategory:(0.6, )"
                                     R"("Ringtone") = true)",
                                     shared,
                                     R"(<AVSystemController> getVolume:forCategory:(0.6, )"
                                     R"("Ringtone") = true)"));
}

TEST_F(VolumeController, AnswersNoForAnUnknownCategoryAndLeavesTheVariable) {
    float volume = -1;
    EXPECT_EQ(controller().getVolume(&volume, "Alarm"), NO);
    EXPECT_EQ(volume, -1);
    EXPECT_EQ(controller().setVolumeTo(0.5F, "Alarm"), NO);
    EXPECT_EQ(controller().getVolume(&volume, NSString{}), NO);
    EXPECT_EQ(calls()[1], R"(<AVSystemController> getVolume:forCategory:(null, "Alarm") = false)");
}

}  // namespace
}  // namespace quillet::test
