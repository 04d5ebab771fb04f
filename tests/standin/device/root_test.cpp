// SPDX-License-Identifier: MIT
#include "platform/standin/device/root.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <stdexcept>

#include "platform/standin/device/new_phone.h"
#include "tests/support/temporary_folder.h"

namespace quillet::test {
namespace {

namespace fs = std::filesystem;
using standin::DeviceRoot;

class Root : public testing::Test {
protected:
    fs::path folder() const { return folder_.path(); }
    fs::path path() const { return folder() / "root"; }
    DeviceRoot newPhone() const {
        standin::makeNewPhone(path(), {});
        return DeviceRoot{path()};
    }

    void expectRefused(const std::string& reason) const {
        try {
            const DeviceRoot root{path()};
            ADD_FAILURE() << "not refused";
        } catch (const std::runtime_error& error) {
            EXPECT_THAT(error.what(), testing::HasSubstr(reason));
        }
    }

private:
    TemporaryFolder folder_;
};

TEST_F(Root, AnAbsentFolderIsRefusedAndNotMade) {
    EXPECT_THROW(DeviceRoot{path()}, std::runtime_error);
    EXPECT_FALSE(fs::exists(path()));
}

TEST_F(Root, AnEmptyFolderIsRefusedAndNotFilled) {
    fs::create_directory(path());
    EXPECT_THROW(DeviceRoot{path()}, std::runtime_error);
    EXPECT_TRUE(fs::is_empty(path()));
}

TEST_F(Root, AFileIsRefused) {
    std::ofstream{path()} << "a file of the user's";
    EXPECT_THROW(DeviceRoot{path()}, std::runtime_error);
}

TEST_F(Root, OfADeviceWhoseStateIsLostOrCannotBeLookedAtIsRefusedAndSaysSo) {
    const fs::path table = newPhone().below(DeviceRoot::notificationsPath);
    fs::remove(table);
    expectRefused("the device has lost /var/run/notifications");
    fs::create_symlink(table.filename(), table);
    expectRefused("the device in it cannot be looked at: Too many levels of symbolic links");
}

TEST_F(Root, PathsOfTheDeviceLieBelowIt) {
    const DeviceRoot root = newPhone();
    EXPECT_EQ(root.below("/a/b"), path() / "a/b");
    EXPECT_EQ(root.below("a/b"), path() / "a/b");
    EXPECT_EQ(root.below("//a/b"), path() / "a/b");
}

TEST_F(Root, NoPathLeavesIt) {
    const DeviceRoot root = newPhone();
    EXPECT_EQ(root.below("/../a"), path() / "a");
    EXPECT_EQ(root.below("../../a"), path() / "a");
    EXPECT_EQ(root.below("/a/../../../b"), path() / "b");
    EXPECT_EQ(root.below("/a/./b/../c"), path() / "a/c");
}

}  // namespace
}  // namespace quillet::test
