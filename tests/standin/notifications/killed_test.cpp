// SPDX-License-Identifier: MIT
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <limits>
#include <set>
#include <string>

#include "platform/notify.h"
#include "platform/standin/device/device.h"
#include "tests/support/child.h"
#include "tests/support/program.h"
#include "tests/support/shared_number.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/traced.h"

namespace quillet::test {
namespace {

namespace fs = std::filesystem;
using standin::Device;
using standin::EventLoop;
using standin::NotificationTable;

constexpr char watchedName[] = "a.name";

/// Whether the instructions of this program are for the most part a sanitizer's own, of which some
/// work takes so many that stepping through it has no end.
bool isSanitized() {
    return dlsym(RTLD_DEFAULT, "__asan_init") != nullptr ||
           dlsym(RTLD_DEFAULT, "__tsan_init") != nullptr;
}

/// How many instructions some work takes, and after how many it is done for others to see.
struct Course {
    std::size_t length = 0;
    std::size_t place = 0;
};

Course courseOf(const std::function<void()>& work, const std::function<bool()>& isDone) {
    Course course;
    for (Traced process = traced(work); process.step(1) == 1;) {
        ++course.length;
        if (course.place == 0 && isDone()) course.place = course.length;
    }
    return course;
}

/// The first and the last instructions, some spread in between, and those around `place`.
std::set<std::size_t> sample(const Course& course) {
    const auto [length, place] = course;
    std::set<std::size_t> instructions;
    for (std::size_t i = 0; i <= 10; ++i) instructions.insert(length * i / 10);
    const std::size_t begin = place - std::min<std::size_t>(place, 4);
    for (std::size_t i = begin; i <= std::min(length, place + 4); ++i) instructions.insert(i);
    return instructions;
}

/// A device whose table processes use that are killed.
class Killed : public testing::Test {
protected:
    Killed() { standin::makeNewPhone(root(), {}); }

    fs::path root() const { return folder_.path() / "root"; }
    fs::path tablePath() const { return root().string() + standin::DeviceRoot::notificationsPath; }

    /// Kills `work` after that many of its instructions.
    static void killAfter(std::size_t instructions, const std::function<void()>& work) {
        traced(work).step(instructions);
    }

private:
    TemporaryFolder folder_;
};

TEST_F(Killed, AtAnyInstructionOfAPostItIsMadeAndSeenOrIsNotMade) {
    if (isSanitized()) GTEST_SKIP() << "the instructions are not ours";
    const SharedNumber<std::uint32_t> calls;
    Gate ready;
    Child watcher{[&] {
        Device device{{.root = root()}};
        device.observers.add(watchedName, [&] { ++*calls; });
        ready.open();
        device.eventLoop.runUntil(std::numeric_limits<double>::infinity());
        return 1;
    }};
    ASSERT_TRUE(ready.pass());
    Device device{{.root = root()}};
    NotificationTable::Entry& entry = *device.notifications.findOrAdd(watchedName);
    const auto post = [] { notify_post(watchedName); };
    const Course course = courseOf(post, [&] { return entry.posts.load() == 1; });
    ASSERT_GT(course.place, 0U);
    std::set<bool> wasMade;
    for (const std::size_t instruction : sample(course)) {
        const std::uint32_t before = entry.posts.load();
        killAfter(instruction, post);
        const std::uint32_t posts = entry.posts.load();
        ASSERT_LE(posts, before + 1) << instruction;
        wasMade.insert(posts != before);
        // Each is waited for, so that each is seen by itself.
        ASSERT_TRUE(becomesTrue([&] { return *calls == posts; })) << instruction;
    }
    EXPECT_EQ(wasMade.size(), 2U) << "some were made, and some were not";
    EXPECT_TRUE(watcher.isRunning());
}

TEST_F(Killed, AtAnyInstructionOfAddingANameItIsThereOrNotAndOthersAddTheirs) {
    if (isSanitized()) GTEST_SKIP() << "the instructions are not ours";
    // A new table for each, so that each goes the same way.
    const auto newTable = [this] {
        fs::remove(tablePath());
        NotificationTable::create(tablePath(), {{"first.name", 0}});
        return NotificationTable{tablePath()};
    };
    NotificationTable first = newTable();
    const NotificationTable::Entry& added = first.find("first.name")[1];
    const Course course =
        courseOf([&] { first.findOrAdd(watchedName); },
                 [&] {
                     EXPECT_TRUE(added.seal.load() == 0 || added.view() == watchedName)
                         << "it is seen whole";
                     return first.find(watchedName) != nullptr;
                 });
    ASSERT_GT(course.place, 0U);
    std::set<bool> wasAdded;
    for (const std::size_t instruction : sample(course)) {
        NotificationTable table = newTable();
        killAfter(instruction, [&] { table.findOrAdd(watchedName); });
        NotificationTable again{tablePath()};
        wasAdded.insert(again.find(watchedName) != nullptr);
        ASSERT_NE(again.findOrAdd("another.name"), nullptr) << instruction;
        ASSERT_NE(again.findOrAdd(watchedName), nullptr) << instruction;
        ASSERT_NE(NotificationTable{tablePath()}.find(watchedName), nullptr) << instruction;
    }
    EXPECT_EQ(wasAdded.size(), 2U) << "some were added, and some were not";
}

TEST_F(Killed, InAWaitLeaveAPostFreeOfSystemCalls) {
    Device device{{.root = root()}};
    device.observers.add(watchedName, [] {});
    for (int i = 0; i < 200; ++i) {
        Gate waits;
        Child waiting{[&] {
            device.eventLoop.at(0, [&] { waits.open(); });
            device.eventLoop.runUntil(std::numeric_limits<double>::infinity());
            return 1;
        }};
        ASSERT_TRUE(waits.pass());
        waiting.kill();
        ASSERT_EQ(waiting.wait(), -SIGKILL);
    }
    const auto posts = [&] { return device.notifications.find(watchedName)->posts.load(); };
    EXPECT_EQ(posts(), 0U);
    std::uint32_t made = 0;
    // Once the last of the waits would have been over.
    EXPECT_TRUE(becomesTrue([&] {
        ++made;
        return systemCallsOf([] { notify_post(watchedName); }).empty();
    }));
    EXPECT_EQ(posts(), made);
}

TEST_F(Killed, WaitsAreSleptInPiecesAfterWhichAPostIsSeenWhoeverMadeIt) {
    Device device{{.root = root()}};
    Traced waiting = traced([&] { device.eventLoop.runUntil(device.clock.now() + 0.3); });
    int pieces = 0;
    while (waiting.nextCall()) {
        if (waiting.call() != SYS_futex) continue;
        const std::uint64_t time = waiting.argument(3);
        const double seconds = static_cast<double>(waiting.peek(time));
        const double nanoseconds = static_cast<double>(waiting.peek(time + sizeof(long)));
        EXPECT_LE(seconds + nanoseconds / 1e9, EventLoop::betweenLooks);
        ++pieces;
    }
    EXPECT_GT(pieces, 0);
    EXPECT_LT(EventLoop::betweenLooks, 0.1);
}

}  // namespace
}  // namespace quillet::test
