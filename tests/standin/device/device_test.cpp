// SPDX-License-Identifier: MIT
#include "platform/standin/device/device.h"

#include <gmock/gmock.h>
#include <signal.h>

#include <cstddef>
#include <filesystem>
#include <stdexcept>
#include <string>

#include "tests/support/descriptors.h"
#include "tests/support/program.h"
#include "tests/support/temporary_folder.h"

namespace quillet::test {
namespace {

namespace fs = std::filesystem;
using standin::Device;
using standin::DeviceRoot;

TEST(Device, WithoutOneThePlatformEndsTheProcessWithAMessage) {
    EXPECT_EXIT(Device::current(), testing::KilledBySignal(SIGABRT),
                testing::Eq("the platform was called without a device\n"));
}

TEST(Device, ThatIsRefusedIsNotMended) {
    const TemporaryFolder folder;
    const fs::path root = folder.path() / "root";
    standin::makeNewPhone(root, {});
    const fs::path hardware = DeviceRoot::below(root, DeviceRoot::hardwarePath);
    fs::remove(hardware);
    writeText(DeviceRoot::below(root, DeviceRoot::factsPath), "no property list");
    EXPECT_THROW(Device{{.root = root}}, std::runtime_error);
    EXPECT_FALSE(fs::exists(hardware));
}

TEST(Device, ManyInTurnLeaveNoDescriptorAndNoMapping) {
    const TemporaryFolder folder;
    const std::ptrdiff_t before = openDescriptors();
    for (int i = 0; i < 10; ++i) {
        Device device{{.root = folder.path() / std::to_string(i)}};
        EXPECT_TRUE(device.hardware.setVolume("Ringtone", 0.5F));
        EXPECT_TRUE(device.observers.add("a.name", [] {}));
        standin::eraseDevice(device.root.path(), {}, {});
    }
    EXPECT_EQ(openDescriptors(), before);
    EXPECT_EQ(readText("/proc/self/maps").find(folder.path()), std::string::npos);
}

}  // namespace
}  // namespace quillet::test
