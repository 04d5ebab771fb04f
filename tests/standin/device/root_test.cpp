// SPDX-License-Identifier: MIT
#include "platform/standin/device/root.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

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

    /// Why there is no device, without the path that comes first.
    std::string refusal() const {
        try {
            const DeviceRoot root{path()};
        } catch (const std::runtime_error& error) {
            const std::string message = error.what();
            const std::string place = path().string() + ": ";
            EXPECT_EQ(message.substr(0, place.size()), place);
            return message.substr(place.size());
        }
        return "none";
    }

private:
    TemporaryFolder folder_;
};

constexpr char otherThings[] = "not a device root (and not empty, so not made into one)";

TEST_F(Root, AnAbsentFolderIsRefusedAndNotMade) {
    EXPECT_EQ(refusal(), otherThings);
    EXPECT_FALSE(fs::exists(path()));
}

TEST_F(Root, AnEmptyFolderIsRefusedAndNotFilled) {
    fs::create_directory(path());
    EXPECT_EQ(refusal(), otherThings);
    EXPECT_TRUE(fs::is_empty(path()));
}

TEST_F(Root, AFileIsRefused) {
    std::ofstream{path()} << "a file of the user's";
    EXPECT_EQ(refusal(), "not a folder");
}

TEST_F(Root, WhereLinksHaveNoEndIsRefused) {
    fs::create_symlink(path(), path());
    EXPECT_EQ(refusal(), "cannot be followed: Too many levels of symbolic links");
}

TEST_F(Root, OfADeviceWhoseStateIsLostOrCannotBeLookedAtIsRefusedAndSaysSo) {
    const fs::path table = newPhone().below(DeviceRoot::notificationsPath);
    fs::remove(table);
    EXPECT_EQ(refusal(),
              "the device has lost /var/run/notifications, the state of its ringer with it; it can "
              "be erased");
    fs::create_symlink(table.filename(), table);
    EXPECT_EQ(refusal(), "the device in it cannot be looked at: Too many levels of symbolic links");
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
