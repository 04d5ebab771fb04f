// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <sys/syscall.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "platform/standin/device/device.h"
#include "platform/standin/files/file.h"
#include "platform/standin/plist/property_list.h"
#include "tests/support/no_room.h"
#include "tests/support/supervisor.h"
#include "tests/support/temporary_folder.h"

namespace quillet::test {
namespace {

namespace fs = std::filesystem;
using standin::Hardware;
using ::testing::ElementsAre;

/// The file of its hardware, of a device that has lost it.
class LostHardwareFile : public testing::Test {
protected:
    using Said = std::vector<std::string>;

    LostHardwareFile() {
        standin::makeNewPhone(root(), {});
        fs::remove(file());
    }

    fs::path root() const { return folder_.path() / "root"; }
    fs::path file() const { return root().string() + standin::DeviceRoot::hardwarePath; }
    void setWord(std::uint64_t word) const {
        standin::NotificationTable table{root().string() + standin::DeviceRoot::notificationsPath};
        table.findOrAdd(standin::DeviceRoot::ringerStateName)->state = word;
    }
    /// Whether a device whose state was that is muted.
    bool isMutedWithWord(std::uint64_t word) const {
        setWord(word);
        fs::remove(file());
        return standin::Device{{.root = root()}}.hardware.isRingerMuted();
    }
    /// What a device says as it begins.
    Said complaints() const {
        Said said;
        const auto hear = [&](const std::string& text) { said.push_back(text); };
        const standin::Device device{{.root = root(), .complain = hear}};
        return said;
    }

private:
    TemporaryFolder folder_;
};

TEST_F(LostHardwareFile, IsMadeAgainWithTheMuteThatTheStateTells) {
    EXPECT_TRUE(isMutedWithWord(0));
    EXPECT_TRUE(isMutedWithWord(2)) << "only a switch that is on is not";
    EXPECT_FALSE(isMutedWithWord(1));
    EXPECT_EQ(Hardware{file()}.volume("Ringtone"), 0.75F);
}

TEST_F(LostHardwareFile, ThatSomebodyElseMakesAgainMeanwhileIsTaken) {
    const auto begin = [this] {
        EXPECT_FALSE(standin::Device{{.root = root()}}.hardware.isRingerMuted());
        return 0;
    };
    setWord(0);
    supervise({SYS_flock}, begin, [this](const SupervisedCall&) {
        if (!fs::exists(file())) {
            standin::writeFileAtomically(file(), standin::writePropertyList(Hardware::newState()));
        }
        return Verdict{};
    });
}

TEST_F(LostHardwareFile, IsComplainedOfOnceForAll) {
    EXPECT_THAT(complaints(), ElementsAre(file().string() + ": was missing; made again, with the "
                                                            "volume of a new device"));
    EXPECT_THAT(complaints(), ElementsAre());
}

TEST_F(LostHardwareFile, ThatCannotBeMadeAgainSaysWhy) {
    const std::string lock = file().string() + ".lock";
    fs::create_directory(lock);
    EXPECT_THAT(complaints(), ElementsAre(lock + ": no lock: Is a directory"));
    fs::remove(lock);
    const NoRoom noRoom;
    EXPECT_THAT(complaints(), ElementsAre(file().string() + ": cannot be written: File too large"));
    EXPECT_FALSE(fs::exists(file()));
}

}  // namespace
}  // namespace quillet::test
