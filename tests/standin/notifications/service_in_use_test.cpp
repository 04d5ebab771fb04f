// SPDX-License-Identifier: MIT
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cmath>
#include <filesystem>
#include <functional>
#include <limits>

#include "platform/notify.h"
#include "platform/standin/device/device.h"
#include "tests/support/temporary_folder.h"

namespace quillet::test {
namespace {

namespace fs = std::filesystem;
using standin::Device;
using standin::NotificationTable;

/// A device of real time, to whose table something happens while it is in use.
class ServiceInUse : public testing::Test {
protected:
    ServiceInUse() {
        device_.observers.add("a.name", [this] { ++calls_; });
    }

    Device& device() { return device_; }
    fs::path table() const { return device_.below(standin::DeviceRoot::notificationsPath); }
    int calls() const { return calls_; }

    /// Expects a wait without limit to end when `harm` is done, and nobody to be called by it.
    void expectEnd(const std::function<void()>& harm) {
        EXPECT_TRUE(device_.notifications.isInPlace());
        device_.eventLoop.at(device_.clock.now() + 0.01, harm);
        device_.eventLoop.runUntil(std::numeric_limits<double>::infinity());
        EXPECT_FALSE(device_.notifications.isInPlace());
        EXPECT_EQ(calls_, 0);
        int token = NOTIFY_TOKEN_INVALID;
        EXPECT_EQ(notify_register_check("a.new.name", &token), NOTIFY_STATUS_FAILED);
    }

private:
    TemporaryFolder folder_;
    Device device_{{.root = folder_.path() / "root"}};
    int calls_ = 0;
};

TEST_F(ServiceInUse, AWaitWithoutLimitEndsWhenTheTableIsRemoved) {
    expectEnd([&] { fs::remove(table()); });
}

TEST_F(ServiceInUse, AWaitWithoutLimitEndsWhenTheTableIsReplaced) {
    expectEnd([&] {
        NotificationTable::create(table().string() + ".new");
        fs::rename(table().string() + ".new", table());
    });
}

TEST_F(ServiceInUse, AWaitWithoutLimitEndsWhenTheTableIsElsewhere) {
    expectEnd([&] {
        fs::rename(table(), table().string() + ".old");
        NotificationTable::create(table());
    });
}

TEST_F(ServiceInUse, AWaitWithoutLimitEndsWhenTheTableIsCutOff) {
    expectEnd([&] { fs::resize_file(table(), 0); });
}

TEST_F(ServiceInUse, AWaitWithoutLimitEndsWhenPartOfTheTableIsCutOff) {
    expectEnd([&] { fs::resize_file(table(), 4096); });
}

TEST_F(ServiceInUse, AWaitWithALimitGoesOnWithoutTheTable) {
    fs::resize_file(table(), 0);
    device().eventLoop.runUntil(device().clock.now() + 0.1);
    int token = NOTIFY_TOKEN_INVALID;
    EXPECT_EQ(notify_register_check("com.apple.springboard.ringerstate", &token),
              NOTIFY_STATUS_FAILED);
    EXPECT_EQ(notify_post("com.apple.springboard.ringerstate"), NOTIFY_STATUS_OK);
    EXPECT_FALSE(device().notifications.isInPlace());
}

TEST_F(ServiceInUse, GrownByOthersIsInPlace) {
    NotificationTable other{table()};
    for (int i = 0; i < 200; ++i) other.findOrAdd(std::to_string(i));
    EXPECT_TRUE(device().notifications.isInPlace());
    EXPECT_NE(device().notifications.findOrAdd("199"), nullptr);
    EXPECT_TRUE(other.isInPlace());
}

}  // namespace
}  // namespace quillet::test
