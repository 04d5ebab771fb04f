// SPDX-License-Identifier: MIT
#include "platform/standin/device/new_phone.h"

#include <gtest/gtest.h>
#include <sys/syscall.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/standin/device/hardware.h"
#include "platform/standin/device/root.h"
#include "platform/standin/files/file.h"
#include "platform/standin/notifications/notification_table.h"
#include "platform/standin/plist/property_list.h"
#include "tests/support/child.h"
#include "tests/support/entries.h"
#include "tests/support/names.h"
#include "tests/support/no_room.h"
#include "tests/support/supervisor.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/values.h"

namespace quillet::test {
namespace {

namespace fs = std::filesystem;
using standin::DeviceRoot;
using standin::Dictionary;
using standin::NotificationTable;
using standin::Value;

constexpr char graphicsServices[] =
    "/System/Library/PrivateFrameworks/GraphicsServices.framework/GraphicsServices";

/// What is below a folder: files with their bytes, folders with nothing.
std::map<std::string, std::string> contents(const fs::path& folder) {
    std::map<std::string, std::string> found;
    for (const auto& entry : fs::recursive_directory_iterator{folder}) {
        const std::string name = fs::relative(entry.path(), folder);
        found[name] = standin::readFile(entry.path()).value_or("");
    }
    return found;
}

/// The device at `path`, a new phone with the switch's preferences if there was nothing.
DeviceRoot deviceAt(const fs::path& path) {
    return DeviceRoot{
        standin::makeNewPhone(path, {{preferencesPath, {{"vibrate-when-off", true}}}}).path};
}

/// What `make` throws.
template <class Make>
std::string messageOf(Make make) {
    try {
        make();
    } catch (const std::runtime_error& error) {
        return error.what();
    }
    return "";
}

class NewPhone : public testing::Test {
protected:
    fs::path folder() const { return folder_.path(); }
    fs::path path() const { return folder() / "root"; }

    void write(const fs::path& file, const std::string& bytes) const {
        fs::create_directories(file.parent_path());
        std::ofstream{file, std::ios::binary} << bytes;
    }

    void expectRefused(const fs::path& root) const {
        const auto before = contents(folder());
        EXPECT_THROW(deviceAt(root), std::runtime_error) << root;
        EXPECT_EQ(contents(folder()), before) << root;
    }

private:
    TemporaryFolder folder_;
};

/// The value in a file of the device, which must be there.
Value valueIn(const fs::path& file) {
    return standin::readPropertyList(standin::readFile(file).value()).value();
}

void expectNewPhone(const fs::path& root) {
    const DeviceRoot device = deviceAt(root);
    EXPECT_EQ(valueIn(device.below(preferencesPath)), (Dictionary{{"vibrate-when-off", true}}));
    EXPECT_EQ(valueIn(device.below(springBoardPreferencesPath)),
              (Dictionary{
                  {"SBLockScreenClock", true}, {"ring-vibrate", true}, {"silent-vibrate", true}}));
    EXPECT_TRUE(fs::is_regular_file(device.below(graphicsServices)));

    NotificationTable table{device.below(DeviceRoot::notificationsPath)};
    ASSERT_NE(table.find("com.apple.springboard.ringerstate"), nullptr);
    EXPECT_EQ(table.find("com.apple.springboard.ringerstate")->state.load(), 1U);
    const standin::Hardware hardware{device.below(DeviceRoot::hardwarePath)};
    EXPECT_EQ(hardware.volume("Ringtone"), 0.75F);
    EXPECT_FALSE(hardware.isRingerMuted());
}

TEST_F(NewPhone, AnAbsentFolderIsMadeWithItsParentsAndANewPhonesFiles) {
    expectNewPhone(folder() / "not" / "yet" / "there");
}

TEST_F(NewPhone, HoldsNothingForThoseWhoHandNothingOver) {
    standin::makeNewPhone(path(), {});
    EXPECT_FALSE(fs::exists(DeviceRoot{path()}.below(preferencesPath)));
}

TEST_F(NewPhone, AnEmptyFolderIsFilled) {
    fs::create_directory(path());
    expectNewPhone(path());
}

TEST_F(NewPhone, NothingIsLeftBesideTheRootAndOthersMayReadIt) {
    deviceAt(path());
    EXPECT_EQ(entriesOf(folder()), 1);
    EXPECT_EQ(fs::status(path()).permissions(), fs::perms{0755});
}

TEST_F(NewPhone, ADeviceIsTakenAsItIs) {
    deviceAt(path());
    fs::remove(deviceAt(path()).below(preferencesPath));
    fs::remove(deviceAt(path()).below(graphicsServices));
    write(path() / "more", "a file of the user's");
    const auto before = contents(folder());
    deviceAt(path());
    EXPECT_EQ(contents(folder()), before);
}

TEST_F(NewPhone, AFolderWithOtherThingsIsRefusedAndUntouched) {
    write(path() / "holiday.txt", "a file of the user's");
    expectRefused(path());
    fs::remove(path() / "holiday.txt");
    fs::create_directories(path() / "var");
    expectRefused(path());
}

TEST_F(NewPhone, AFileIsNoRoot) {
    write(path(), "a file of the user's");
    expectRefused(path());
    expectRefused(path() / "below");
    write(path(), "");
    expectRefused(path());
}

TEST_F(NewPhone, APlaceThatCannotBeWrittenIsNoRoot) {
    EXPECT_THROW(deviceAt("/proc/quillet"), std::runtime_error);
    EXPECT_THROW(deviceAt("/dev/null/root"), std::runtime_error);
    EXPECT_THROW(deviceAt(""), std::runtime_error);
}

TEST_F(NewPhone, WithoutRoomNothingIsMadeAndNothingIsLeft) {
    {
        const NoRoom noRoom;
        EXPECT_THROW(deviceAt(path()), std::runtime_error);
    }
    EXPECT_TRUE(fs::is_empty(folder()));
}

TEST_F(NewPhone, ATrailingSlashMakesNoDifference) {
    deviceAt(path().string() + "/");
    EXPECT_EQ(deviceAt(path().string() + "//").below("/a"), deviceAt(path()).below("/a"));
    EXPECT_EQ(entriesOf(folder()), 1);
}

TEST_F(NewPhone, TheMessageNamesThePath) {
    write(path() / "holiday.txt", "a file of the user's");
    const std::string message = messageOf([this] { deviceAt(path()); });
    EXPECT_EQ(message.find(path().string() + ": "), 0U) << message;
}

/// A test whose working folder is the test's own.
class NewPhoneFromHere : public NewPhone {
protected:
    NewPhoneFromHere() { fs::current_path(folder()); }
    ~NewPhoneFromHere() override { fs::current_path(before_); }

private:
    fs::path before_ = fs::current_path();
};

TEST_F(NewPhoneFromHere, ARelativePathIsMeantFromTheWorkingFolder) {
    const DeviceRoot root = deviceAt("root");
    EXPECT_TRUE(fs::is_regular_file(path() / "var/run/notifications"));
    fs::current_path("/");
    EXPECT_EQ(root.below("/a"), path() / "a") << "and stays where it was meant";
}

TEST_F(NewPhoneFromHere, AnEmptyWorkingFolderMayBeTheRoot) {
    fs::create_directory(path());
    fs::current_path(path());
    expectNewPhone(".");
    expectNewPhone(path());
}

TEST_F(NewPhone, ALinkToAnEmptyFolderIsFilledWhereItPoints) {
    fs::create_directory(folder() / "elsewhere");
    fs::create_directory_symlink("elsewhere", path());
    expectNewPhone(path());
    EXPECT_TRUE(fs::is_symlink(path()));
    expectNewPhone(folder() / "elsewhere");
}

TEST_F(NewPhone, TellsWhetherItWasMade) {
    EXPECT_TRUE(standin::makeNewPhone(path(), {}).isNew);
    EXPECT_FALSE(standin::makeNewPhone(path(), {}).isNew);
}

TEST_F(NewPhone, IsWhatItIsToldToBe) {
    const standin::DeviceFacts facts = {"iPod5,1", {.media = standin::HostVariant::Media::deaf}};
    const fs::path phone = standin::makeNewPhone(path(), {}, facts).path;
    EXPECT_EQ(standin::readFacts(DeviceRoot::below(phone, DeviceRoot::factsPath)), facts);
}

TEST_F(NewPhone, AnEmptyMountPointIsNoRootAndSaysSo) {
    fs::create_directory(path());
    const auto make = [this] {
        EXPECT_EQ(messageOf([this] { deviceAt(path()); }),
                  path().string() +
                      ": no device can be made of it: a file system is mounted "
                      "there; name a folder in it");
        return 0;
    };
    supervise({SYS_rename}, make, [](const SupervisedCall&) {
        return Verdict{Verdict::Kind::fails, EBUSY};
    });
    EXPECT_TRUE(fs::is_empty(path()));
}

TEST_F(NewPhone, IsWhatAnErasedDeviceBecomesWithItsModel) {
    write(deviceAt(path()).below("/var/mobile/letter.txt"), "a file of the user's");
    fs::remove(path() / "var/run/notifications");
    standin::eraseDevice(path(), {{preferencesPath, {{"vibrate-when-off", true}}}}, {"iPod5,1"});
    EXPECT_FALSE(fs::exists(path() / "var/mobile/letter.txt"));
    EXPECT_EQ(standin::readFacts(path() / "var/db/device.plist").machine, "iPod5,1");
    expectNewPhone(path());
    EXPECT_EQ(entriesOf(folder()), 1);
}

TEST_F(NewPhone, NothingButADeviceIsErased) {
    const auto erase = [this] { standin::eraseDevice(path(), {}, {}); };
    const std::string message = path().string() + ": no device is there";
    EXPECT_EQ(messageOf(erase), message);
    write(path() / "holiday.txt", "a file of the user's");
    EXPECT_EQ(messageOf(erase), message);
    EXPECT_TRUE(fs::exists(path() / "holiday.txt"));
}

TEST_F(NewPhone, ADeviceThatCannotBeErasedIsAsItWas) {
    deviceAt(path());
    const auto before = contents(folder());
    const auto erase = [this] {
        EXPECT_EQ(messageOf([this] { standin::eraseDevice(path(), {}, {}); }),
                  path().string() + ": no device can be made of it: Invalid argument");
        return 0;
    };
    supervise({SYS_renameat2}, erase, [](const SupervisedCall&) {
        return Verdict{Verdict::Kind::fails, EINVAL};
    });
    EXPECT_EQ(contents(folder()), before);
}

TEST_F(NewPhone, SeveralProcessesThatMakeOneAtOnceAllHaveIt) {
    constexpr int processes = 4;
    for (int round = 0; round < 10; ++round) {
        const fs::path shared = folder() / std::to_string(round) / "root";
        Gate gate;
        std::vector<std::unique_ptr<Child>> makers;
        for (int process = 0; process < processes; ++process) {
            makers.push_back(std::make_unique<Child>([&gate, &shared, process] {
                if (!gate.pass()) return 1;
                const DeviceRoot device = deviceAt(shared);
                NotificationTable table{device.below(DeviceRoot::notificationsPath)};
                table.findOrAdd("from." + std::to_string(process))->state = 1;
                return table.find("com.apple.springboard.ringerstate") != nullptr ? 0 : 2;
            }));
        }
        for (int process = 0; process < processes; ++process) gate.open();
        for (const auto& maker : makers) EXPECT_EQ(maker->wait(), 0);

        EXPECT_EQ(entriesOf(shared.parent_path()), 1) << "nothing but the root is left";
        NotificationTable table{deviceAt(shared).below(DeviceRoot::notificationsPath)};
        for (int process = 0; process < processes; ++process) {
            EXPECT_NE(table.find("from." + std::to_string(process)), nullptr) << "all have one";
        }
    }
}

}  // namespace
}  // namespace quillet::test
