// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <thread>

#include "platform/notify.h"
#include "platform/standin/device/device.h"
#include "tests/support/child.h"
#include "tests/support/machine.h"
#include "tests/support/real_time.h"

namespace quillet::test {
namespace {

using standin::Device;

/// A device of real time, whose observer of "a.name" notes when it is called.
class RealLoop : public testing::Test {
protected:
    RealLoop() {
        device().observers.add("a.name", [this] { calledAt_ = realNow(); });
    }

    Device& device() { return machine_.device(); }
    std::filesystem::path root() const { return machine_.folder() / "root"; }
    double calledAt() const { return calledAt_; }

private:
    Machine machine_{{.clock = standin::Clock::Kind::real}};
    double calledAt_ = 0;
};

TEST_F(RealLoop, WaitsForAtLeastTheTimeAskedForAndRunsWorkNotBeforeItIsDue) {
    const double start = realNow();
    double ran = 0;
    device().eventLoop.at(device().clock.now() + 0.05, [&] { ran = realNow(); });
    device().eventLoop.runUntil(device().clock.now() + 0.1);
    EXPECT_GE(ran - start, 0.05);
    EXPECT_GE(realNow() - start, 0.1);
}

TEST_F(RealLoop, APostOfAnotherThreadEndsTheWaitWellBeforeTheLimit) {
    const double start = realNow();
    std::atomic<bool> hasPosted = false;
    std::thread poster{[&] {
        std::this_thread::sleep_for(std::chrono::milliseconds{50});
        standin::NotificationTable& table = device().notifications;
        table.post(*table.find("a.name"));
        hasPosted = true;
    }};
    device().eventLoop.runUntil(device().clock.now() + 1);
    poster.join();
    EXPECT_TRUE(hasPosted);
    EXPECT_GE(calledAt() - start, 0.05);
    EXPECT_LT(calledAt() - start, 0.8);
    EXPECT_GE(realNow() - start, 1) << "the wait goes on after the callback";
}

TEST_F(RealLoop, APostOfAnotherProcessEndsTheWaitWellBeforeTheLimit) {
    Gate gate;
    Child poster{[&] {
        standin::NotificationTable table{root().string() + standin::DeviceRoot::notificationsPath};
        if (!gate.pass()) return 1;
        std::this_thread::sleep_for(std::chrono::milliseconds{50});
        table.post(*table.find("a.name"));
        return 0;
    }};
    gate.open();
    const double start = realNow();
    device().eventLoop.runUntil(device().clock.now() + 1);
    EXPECT_GT(calledAt(), start);
    EXPECT_LT(calledAt() - start, 0.8);
    EXPECT_EQ(poster.wait(), 0);
}

TEST_F(RealLoop, APostThatAnObserverMakesDoesNotWaitForTheLimit) {
    // The fixture's observer comes first, so this turn has passed it by when the post is made.
    device().observers.add("another.name", [] { notify_post("a.name"); });
    notify_post("another.name");
    const double start = realNow();
    device().eventLoop.runUntil(device().clock.now() + 0.5);
    EXPECT_GT(calledAt(), start);
    EXPECT_LT(calledAt() - start, 0.4);
}

TEST_F(RealLoop, PostsOfNamesThatNobodyHereObservesDoNotShortenTheWait) {
    const double start = realNow();
    standin::NotificationTable& table = device().notifications;
    standin::NotificationTable::Entry& other = *table.findOrAdd("another.name");
    std::thread poster{[&] {
        for (int i = 0; i < 5; ++i) {
            std::this_thread::sleep_for(std::chrono::milliseconds{10});
            table.post(other);
        }
    }};
    device().eventLoop.runUntil(device().clock.now() + 0.2);
    poster.join();
    EXPECT_GE(realNow() - start, 0.2);
    EXPECT_EQ(calledAt(), 0);
}

}  // namespace
}  // namespace quillet::test
