// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "platform/notify.h"
#include "platform/standin/device/device.h"
#include "tests/support/child.h"
#include "tests/support/temporary_folder.h"

namespace quillet::test {
namespace {

using standin::Device;

constexpr int threads = 4;

/// A device of real time, which several threads use at once.
class Threads : public testing::Test {
protected:
    Device& device() { return device_; }

    template <class Work>
    static void run(const Work& work) {
        std::vector<std::jthread> running;
        for (int thread = 0; thread < threads; ++thread) {
            running.emplace_back([&work, thread] { work(thread); });
        }
    }

private:
    TemporaryFolder folder_;
    Device device_{{.root = folder_.path() / "root"}};
};

TEST_F(Threads, EachHaveTheirTokensAndWords) {
    constexpr int rounds = 200;
    std::atomic<int> good = 0;
    run([&](int thread) {
        for (int i = 0; i < rounds; ++i) {
            const std::string name = "name." + std::to_string((thread + i) % 8);
            int token = NOTIFY_TOKEN_INVALID;
            int posted = 0;
            std::uint64_t word = 0;
            good += notify_register_check(name.c_str(), &token) == NOTIFY_STATUS_OK &&
                    notify_set_state(token, 5) == NOTIFY_STATUS_OK &&
                    notify_post(name.c_str()) == NOTIFY_STATUS_OK &&
                    notify_check(token, &posted) == NOTIFY_STATUS_OK && posted == 1 &&
                    notify_get_state(token, &word) == NOTIFY_STATUS_OK && word == 5 &&
                    notify_cancel(token) == NOTIFY_STATUS_OK;
        }
    });
    EXPECT_EQ(good, threads * rounds);
    EXPECT_EQ(device().tokens.count(), 0U);
}

TEST_F(Threads, ThatCheckOneTokenFindEachPostOnce) {
    int token = NOTIFY_TOKEN_INVALID;
    int posted = 0;
    notify_register_check("a.name", &token);
    notify_check(token, &posted);
    for (int round = 0; round < 200; ++round) {
        notify_post("a.name");
        std::atomic<int> found = 0;
        run([&](int) {
            int seen = 0;
            notify_check(token, &seen);
            found += seen;
        });
        ASSERT_EQ(found, 1) << round;
    }
}

TEST_F(Threads, OneMayCancelATokenThatOthersUse) {
    for (int round = 0; round < 200; ++round) {
        int token = NOTIFY_TOKEN_INVALID;
        notify_register_check("a.name", &token);
        std::atomic<int> cancelled = 0;
        run([&](int) {
            int posted = 0;
            notify_check(token, &posted);
            notify_set_state(token, 1);
            cancelled += notify_cancel(token) == NOTIFY_STATUS_OK;
        });
        ASSERT_EQ(cancelled, 1) << round;
    }
}

TEST_F(Threads, NeverReadAnotherNameByATokenThatIsCancelled) {
    const auto tokenFor = [](const char* name) {
        int token = NOTIFY_TOKEN_INVALID;
        notify_register_check(name, &token);
        return token;
    };
    notify_set_state(tokenFor("a.name"), 1);
    notify_set_state(tokenFor("another.name"), 2);
    std::atomic<int> shared = tokenFor("a.name");
    std::atomic<bool> isOver = false;
    std::atomic<int> wrong = 0;
    run([&](int thread) {
        for (int i = 0; thread == 0 && i < 5000; ++i) {
            notify_cancel(shared.exchange(tokenFor("a.name")));
            notify_cancel(tokenFor("another.name"));
            // Some are kept, so that the tokens need ever more room.
            if (i % 50 == 0) tokenFor("another.name");
        }
        if (thread == 0) isOver = true;
        while (!isOver) {
            std::uint64_t word = 1;
            notify_get_state(shared, &word);
            wrong += word != 1;
        }
    });
    EXPECT_EQ(wrong, 0);
}

TEST_F(Threads, AddObserversWhileTheMainOneDeliversToThem) {
    constexpr int rounds = 50;
    std::atomic<int> calls = 0;
    std::atomic<bool> isOver = false;
    std::jthread others{[&] {
        run([&](int) {
            for (int i = 0; i < rounds; ++i) {
                device().observers.add("a.name", [&] { ++calls; });
                notify_post("a.name");
            }
        });
        isOver = true;
    }};
    while (!isOver) device().eventLoop.turn();
    others.join();
    EXPECT_EQ(device().observers.count(), std::size_t{threads} * rounds);
    device().eventLoop.turn();
    EXPECT_GE(calls, threads * rounds) << "each has heard of its own post at least";
}

TEST_F(Threads, MayForkWhileOthersUseTheService) {
    std::atomic<bool> isOver = false;
    std::atomic<int> ready = 0;
    std::jthread busy{[&] {
        while (!isOver) {
            int token = NOTIFY_TOKEN_INVALID;
            notify_register_check("a.name", &token);
            notify_cancel(token);
            ++ready;
        }
    }};
    while (ready == 0) std::this_thread::yield();
    for (int round = 0; round < 50; ++round) {
        Child child{[&] {
            int token = NOTIFY_TOKEN_INVALID;
            if (notify_register_check("a.name", &token) != NOTIFY_STATUS_OK) return 1;
            return static_cast<int>(notify_cancel(token));
        }};
        ASSERT_EQ(child.wait(), 0) << round;
    }
    isOver = true;
}

}  // namespace
}  // namespace quillet::test
