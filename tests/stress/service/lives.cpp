// SPDX-License-Identifier: MIT
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <memory>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "platform/notify.h"
#include "tests/stress/service/ground.h"
#include "tests/stress/service/parts.h"

namespace quillet::test {

using standin::Device;
using standin::NotificationTable;

namespace {

/// Does what a program may do with the service, on names of its own and on names of all, until its
/// time is over. False when the service answered what it must not.
bool use(const std::string& own, unsigned seed, double end) {
    std::mt19937 random{seed};
    while (realNow() < end) {
        const std::string all = "shared." + std::to_string(random() % 50);
        int token = NOTIFY_TOKEN_INVALID;
        int other = NOTIFY_TOKEN_INVALID;
        int posted = 0;
        std::uint64_t word = 0;
        const std::uint64_t value = random();
        const bool isGood = notify_register_check(own.c_str(), &token) == NOTIFY_STATUS_OK &&
                            notify_register_check(all.c_str(), &other) == NOTIFY_STATUS_OK &&
                            notify_set_state(token, value) == NOTIFY_STATUS_OK &&
                            notify_post(own.c_str()) == NOTIFY_STATUS_OK &&
                            notify_post(all.c_str()) == NOTIFY_STATUS_OK &&
                            notify_check(token, &posted) == NOTIFY_STATUS_OK && posted == 1 &&
                            notify_check(token, &posted) == NOTIFY_STATUS_OK && posted == 0 &&
                            notify_get_state(token, &word) == NOTIFY_STATUS_OK && word == value &&
                            notify_cancel(other) == NOTIFY_STATUS_OK &&
                            notify_cancel(token) == NOTIFY_STATUS_OK;
        if (!isGood) return false;
    }
    return true;
}

/// A process whose main thread forks while two others use the service, until it is killed.
int live(int number, double end) {
    const std::string own = "process." + std::to_string(number);
    const auto seed = static_cast<unsigned>(number);
    std::atomic<bool> isGood = true;
    std::vector<std::jthread> threads;
    for (const char* const thread : {".a", ".b"}) {
        threads.emplace_back([&, thread] {
            if (!use(own + thread, seed, end)) isGood = false;
        });
    }
    while (realNow() < end) {
        Child child{[&] { return use(own + ".child", seed, realNow() + 0.01) ? 0 : 1; }};
        if (child.wait() != 0) isGood = false;
    }
    threads.clear();
    return isGood ? 0 : 1;
}

}  // namespace

bool liveAndDie(const ServiceExtent& extent) {
    const Ground ground;
    auto watcher = std::make_unique<Watcher>(ground.root());
    std::mt19937 random{1};
    const double end = realNow() + extent.seconds;
    Device device{{.root = ground.root()}};
    int lives = 0;
    bool isGood = true;
    while (isGood && realNow() < end) {
        std::vector<std::unique_ptr<Child>> processes;
        for (int i = 0; i < 4; ++i) {
            const int number = lives++ % 300;
            processes.push_back(
                std::make_unique<Child>([=] { return live(number, realNow() + 0.1); }));
        }
        usleep(static_cast<useconds_t>(random() % 100000));
        // Half of them die in the middle of their lives, the rest come to their end.
        processes.resize(2);
        for (const auto& process : processes) isGood = process->wait() == 0 && isGood;
    }
    const NotificationTable again{ground.table()};
    notify_post(name);
    const std::uint32_t posts = device.notifications.findOrAdd(name)->posts;
    std::printf(
        "%d processes of three threads that register, set, post, read, cancel and fork, "
        "every other one killed; ",
        lives);
    const bool isSeen = watcher->sees(posts);
    watcher.reset();
    return isGood && isSeen && postIsFree(device);
}

bool addNames(const ServiceExtent& /*extent*/) {
    constexpr int processes = 4;
    constexpr int names = 2400;
    const Ground ground;
    Device device{{.root = ground.root()}};
    const auto nameOf = [](int process, int i) {
        return std::to_string(process) + "." + std::to_string(i);
    };
    std::vector<std::unique_ptr<Child>> adders;
    for (int process = 0; process < processes; ++process) {
        adders.push_back(std::make_unique<Child>([&, process] {
            const auto add = [&](int begin) {
                for (int i = begin; i < names; i += 2) {
                    device.notifications.findOrAdd(nameOf(process, i));
                }
            };
            std::jthread other{add, 1};
            add(0);
            return 0;
        }));
    }
    for (const auto& adder : adders) adder->wait();
    NotificationTable again{ground.table()};
    int lost = 0;
    for (int i = 0; i < processes * names; ++i) {
        lost += again.find(nameOf(i / names, i % names)) == nullptr;
    }
    std::printf("%d names added by forked processes and their threads at once: %d lost; ",
                processes * names, lost);
    return lost == 0;
}

}  // namespace quillet::test
