// SPDX-License-Identifier: MIT
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/file.h>
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <iterator>
#include <limits>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "platform/notify.h"
#include "platform/standin/device/device.h"
#include "tests/support/child.h"
#include "tests/support/real_time.h"
#include "tests/support/temporary_folder.h"

namespace quillet::test {
namespace {

namespace fs = std::filesystem;
using standin::Device;
using standin::NotificationTable;

constexpr char name[] = "a.name";

class TwoProcesses : public testing::Test {
protected:
    fs::path root() const { return folder_.path() / "root"; }
    fs::path tablePath() const { return root().string() + standin::DeviceRoot::notificationsPath; }

    /// Made before any process needs it.
    TwoProcesses() { standin::makeNewPhone(root(), {}); }

private:
    TemporaryFolder folder_;
};

/// A device with an observer of `name`.
class Observing {
public:
    explicit Observing(const fs::path& root) : device_{{.root = root}} {
        device_.observers.add(name, [this] { ++calls_; });
    }

    /// Turns until the observer was called, for at most 20 s.
    bool isCalled() {
        while (calls_ == 0 && device_.clock.now() < 20) {
            device_.eventLoop.runUntil(device_.clock.now() + 0.01);
        }
        return calls_ > 0;
    }

    Device& device() { return device_; }

private:
    int calls_ = 0;
    Device device_;
};

int tokenOf(const char* ofName) {
    int token = NOTIFY_TOKEN_INVALID;
    notify_register_check(ofName, &token);
    return token;
}

TEST_F(TwoProcesses, APostOfOneCallsTheObserverOfTheOther) {
    Gate gate;
    Child poster{[&] {
        Device device{{.root = root()}};
        if (!gate.pass()) return 1;
        return static_cast<int>(notify_post(name));
    }};
    Observing observing{root()};
    gate.open();
    EXPECT_TRUE(observing.isCalled());
    EXPECT_EQ(poster.wait(), 0);
}

TEST_F(TwoProcesses, AnObserverInEachIsCalledByOnePost) {
    Gate ready;
    Child other{[&] {
        Observing observing{root()};
        ready.open();
        return observing.isCalled() ? 0 : 1;
    }};
    Observing observing{root()};
    ASSERT_TRUE(ready.pass());
    notify_post(name);
    EXPECT_TRUE(observing.isCalled());
    EXPECT_EQ(other.wait(), 0);
}

TEST_F(TwoProcesses, AWordThatOneWritesIsReadByTheOther) {
    Gate written;
    Gate answered;
    constexpr std::uint64_t answer = std::numeric_limits<std::uint64_t>::max();
    Child other{[&] {
        Device device{{.root = root()}};
        const int token = tokenOf(name);
        std::uint64_t word = 0;
        if (!written.pass() || notify_get_state(token, &word) != NOTIFY_STATUS_OK) return 1;
        notify_set_state(token, answer);
        answered.open();
        return word == 0x0123456789ABCDEFU ? 0 : 2;
    }};
    Device device{{.root = root()}};
    const int token = tokenOf(name);
    notify_set_state(token, 0x0123456789ABCDEFU);
    written.open();
    ASSERT_TRUE(answered.pass());
    std::uint64_t word = 0;
    notify_get_state(token, &word);
    EXPECT_EQ(word, answer);
    EXPECT_EQ(other.wait(), 0);
}

TEST_F(TwoProcesses, ACheckFindsThePostOfTheOther) {
    Device device{{.root = root()}};
    const int token = tokenOf(name);
    int posted = 0;
    notify_check(token, &posted);
    Child poster{[&] {
        Device device{{.root = root()}};
        return static_cast<int>(notify_post(name));
    }};
    ASSERT_EQ(poster.wait(), 0);
    notify_check(token, &posted);
    EXPECT_EQ(posted, 1);
}

TEST_F(TwoProcesses, TwoThatWaitBothSeeOnePost) {
    Gate ready;
    const auto watch = [&] {
        Observing observing{root()};
        ready.open();
        return observing.isCalled() ? 0 : 1;
    };
    Child one{watch};
    Child other{watch};
    ASSERT_TRUE(ready.pass() && ready.pass());
    Device device{{.root = root()}};
    notify_post(name);
    EXPECT_EQ(one.wait(), 0);
    EXPECT_EQ(other.wait(), 0);
}

TEST_F(TwoProcesses, OneThatIsKilledWithTheLockLetsTheNextOneAddItsName) {
    NotificationTable table{tablePath()};
    NotificationTable::Entry* const known = table.findOrAdd("known");
    Gate locked;
    Child holder{[&] {
        NotificationTable own{tablePath()};
        const int file = open(tablePath().c_str(), O_RDWR);
        if (flock(file, LOCK_EX) != 0) return 1;
        locked.open();
        for (;;) pause();
    }};
    ASSERT_TRUE(locked.pass());
    Child adder{[&] {
        NotificationTable own{tablePath()};
        return own.findOrAdd("added.later") != nullptr ? 0 : 1;
    }};

    // What needs no new name does not wait for the lock.
    EXPECT_EQ(table.findOrAdd("known"), known);
    known->state = 1;
    table.post(*known);
    std::this_thread::sleep_for(std::chrono::milliseconds{50});
    EXPECT_TRUE(adder.isRunning());

    holder.kill();
    EXPECT_EQ(holder.wait(), -SIGKILL);
    EXPECT_EQ(adder.wait(), 0);
    EXPECT_NE(table.find("added.later"), nullptr);
}

TEST_F(TwoProcesses, OneThatStandsStillWithTheLockHoldsUpNobodyForLong) {
    Gate locked;
    Child holder{[&] {
        const int file = open(tablePath().c_str(), O_RDWR);
        if (flock(file, LOCK_EX) != 0) return 1;
        locked.open();
        for (;;) pause();
    }};
    ASSERT_TRUE(locked.pass());
    Device device{{.root = root()}};
    int token = NOTIFY_TOKEN_INVALID;
    const double start = realNow();
    EXPECT_EQ(notify_register_check("a.new.name", &token), NOTIFY_STATUS_FAILED);
    EXPECT_LT(realNow() - start, 5);
    EXPECT_EQ(notify_register_check("com.apple.springboard.ringerstate", &token), NOTIFY_STATUS_OK)
        << "which is there already";
}

TEST_F(TwoProcesses, ForkedOnesAndTheirThreadsLoseNoNameThatTheyAdd) {
    constexpr int processes = 4;
    constexpr int names = 1200;
    Device device{{.root = root()}};
    const auto nameOf = [](int process, int thread, int i) {
        return std::to_string(process) + "." + std::to_string(thread) + "." + std::to_string(i);
    };
    // The device of this process, with all that it holds open, is theirs too.
    const auto add = [&](int process, int thread) {
        for (int i = 0; i < names; ++i) tokenOf(nameOf(process, thread, i).c_str());
    };
    std::vector<std::unique_ptr<Child>> adders;
    for (int process = 0; process < processes; ++process) {
        adders.push_back(std::make_unique<Child>([&, process] {
            std::thread other{[&] { add(process, 1); }};
            add(process, 0);
            other.join();
            return device.tokens.count() == std::size_t{2} * names ? 0 : 1;
        }));
    }
    for (const auto& adder : adders) EXPECT_EQ(adder->wait(), 0);
    EXPECT_EQ(device.tokens.count(), 0U);

    NotificationTable table{tablePath()};
    for (int i = 0; i < processes * 2 * names; ++i) {
        const std::string one = nameOf(i / 2 / names, i / names % 2, i % names);
        ASSERT_NE(table.find(one), nullptr) << one;
    }
}

TEST_F(TwoProcesses, ANameThatOneAddsIsSeenWholeByTheOther) {
    constexpr int names = 200;
    const auto longName = [](int i) { return std::string(200, 'n') + std::to_string(i); };
    Child adder{[&] {
        NotificationTable table{tablePath()};
        for (int i = 0; i < names; ++i) {
            NotificationTable::Entry* const entry = table.findOrAdd(longName(i));
            if (entry == nullptr) return 1;
        }
        return 0;
    }};
    NotificationTable table{tablePath()};
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds{20};
    for (int i = 0; i < names; ++i) {
        NotificationTable::Entry* entry = nullptr;
        while (entry == nullptr && std::chrono::steady_clock::now() < deadline) {
            entry = table.find(longName(i));
        }
        ASSERT_NE(entry, nullptr) << i;
        ASSERT_EQ(entry->view(), longName(i));
    }
    EXPECT_EQ(adder.wait(), 0);
}

TEST_F(TwoProcesses, ManyThatAddTheSameNamesAtOnceEndWithEachNameOnce) {
    constexpr int processes = 4;
    constexpr int names = 200;
    Gate gate;
    std::vector<std::unique_ptr<Child>> adders;
    for (int process = 0; process < processes; ++process) {
        adders.push_back(std::make_unique<Child>([&gate, process, this] {
            NotificationTable table{tablePath()};
            if (!gate.pass()) return 1;
            for (int i = 0; i < names; ++i) {
                const int number = process % 2 == 0 ? i : names - 1 - i;
                table.findOrAdd("name." + std::to_string(number))->state.fetch_add(1);
            }
            return 0;
        }));
    }
    for (int process = 0; process < processes; ++process) gate.open();
    for (const auto& adder : adders) EXPECT_EQ(adder->wait(), 0);

    NotificationTable table{tablePath()};
    for (int i = 0; i < names; ++i) {
        NotificationTable::Entry* const entry = table.find("name." + std::to_string(i));
        ASSERT_NE(entry, nullptr) << i;
        EXPECT_EQ(entry->state.load(), std::uint64_t{processes}) << i;
    }
}

}  // namespace
}  // namespace quillet::test
