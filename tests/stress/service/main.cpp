// SPDX-License-Identifier: MIT
//
// Attacks the notification service of a device for some time, says what was tried and what held,
// and fails when anything did not.
#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <functional>
#include <limits>
#include <memory>
#include <random>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "platform/notify.h"
#include "platform/standin/device/device.h"
#include "tests/support/child.h"
#include "tests/support/program.h"
#include "tests/support/real_time.h"
#include "tests/support/shared_number.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/traced_work.h"

namespace quillet::test {
namespace {

namespace fs = std::filesystem;
using standin::Device;
using standin::NotificationTable;

constexpr char name[] = "a.name";
constexpr double forEver = std::numeric_limits<double>::infinity();

/// How much is tried.
struct Extent {
    /// For each part that tries until its time is over.
    double seconds;
    /// Of the instructions of a post every so many are tried.
    std::size_t stride;
    int killsInWaits;
};

constexpr Extent shortOne = {2.5, 150, 200};
constexpr Extent ordinary = {30, 7, 10000};
constexpr Extent longOne = {3600, 1, 100000};

/// A device, and what has to hold of it in the end.
class Ground {
public:
    Ground() { standin::makeNewPhone(root(), {}); }

    fs::path root() const { return folder_.path() / "root"; }
    fs::path table() const { return root().string() + standin::DeviceRoot::notificationsPath; }

private:
    TemporaryFolder folder_;
};

/// A process that waits for posts of `name` for as long as the object lives, and notes when it saw
/// the last.
class Watcher {
public:
    explicit Watcher(const fs::path& root)
        : process_{[this, root] {
              Device device{{.root = root}};
              NotificationTable::Entry& entry = *device.notifications.findOrAdd(name);
              device.observers.add(name, [&] {
                  *seenAt_ = realNow();
                  *seen_ = entry.posts.load();
              });
              ready_.open();
              device.eventLoop.runUntil(forEver);
              return 1;
          }} {
        if (!ready_.pass()) throw std::runtime_error("the watcher does not watch");
    }

    /// Whether it sees so many posts in the next seconds.
    bool sees(std::uint32_t posts) const {
        return becomesTrue([&] { return *seen_ == posts; });
    }
    pid_t number() const { return process_.number(); }
    /// See realNow().
    double seenAt() const { return *seenAt_; }

private:
    SharedNumber<std::uint32_t> seen_;
    SharedNumber<double> seenAt_;
    Gate ready_;
    Child process_;
};

/// A process that does nothing but sleep, and notes by how many seconds it was woken too late at
/// most: so late is this machine by itself.
class Sleeper {
public:
    Sleeper()
        : process_{[this] {
              for (;;) {
                  const double start = realNow();
                  std::this_thread::sleep_for(std::chrono::milliseconds{70});
                  *late_ = std::max(late_->load(), realNow() - start - 0.07);
              }
              return 0;
          }} {}

    double lateness() const { return *late_; }

private:
    struct Late : SharedNumber<double> {
        std::atomic<double>* operator->() const { return &**this; }
    };
    Late late_;
    Child process_;
};

bool postIsFree(Device& device) {
    const std::uint32_t before = device.notifications.findOrAdd(name)->posts;
    const bool isFree = systemCallsOf([] { notify_post(name); }).empty();
    return isFree && device.notifications.find(name)->posts == before + 1;
}

bool killInWaits(const Extent& extent) {
    const Ground ground;
    Device device{{.root = ground.root()}};
    device.observers.add(name, [] {});
    for (int i = 0; i < extent.killsInWaits; ++i) {
        Gate waits;
        Child waiting{[&] {
            device.eventLoop.at(0, [&] { waits.open(); });
            device.eventLoop.runUntil(forEver);
            return 1;
        }};
        if (!waits.pass()) return false;
    }
    std::printf("%d processes killed inside a wait; ", extent.killsInWaits);
    return postIsFree(device);
}

bool killPosters(const Extent& extent) {
    const Ground ground;
    const Watcher watcher{ground.root()};
    const Sleeper sleeper;
    Device device{{.root = ground.root()}};
    const NotificationTable::Entry& entry = *device.notifications.findOrAdd(name);
    int killed = 0;
    int made = 0;
    double longest = 0;
    bool isOver = false;
    for (std::size_t at = 0; !isOver; at += extent.stride, ++killed) {
        const std::uint32_t before = entry.posts;
        isOver = TracedWork{[] { notify_post(name); }}.step(at) < at;
        const double now = realNow();
        if (!watcher.sees(entry.posts)) return false;
        if (entry.posts == before) continue;
        ++made;
        longest = std::max(longest, watcher.seenAt() - now);
    }
    std::printf(
        "a post killed at %d of its instructions: %d made, seen after %.0f ms at most, "
        "with a machine that is %.0f ms late by itself; ",
        killed, made, longest * 1000, sleeper.lateness() * 1000);
    return made > 0 && longest <= 0.1 + sleeper.lateness();
}

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

bool liveAndDie(const Extent& extent) {
    const Ground ground;
    const Watcher watcher{ground.root()};
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
    return isGood && watcher.sees(posts) && postIsFree(device);
}

/// The seconds of processor time that a process has taken. See proc(5), schedstat.
double processorTime(pid_t process) {
    const std::string file = "/proc/" + std::to_string(process) + "/schedstat";
    return std::stod(readText(file)) / 1e9;
}

bool waitIdly(const Extent& extent) {
    const Ground ground;
    const Watcher watcher{ground.root()};
    const double start = realNow();
    const double before = processorTime(watcher.number());
    std::this_thread::sleep_for(std::chrono::duration<double>{std::min(extent.seconds, 60.0)});
    const double share = (processorTime(watcher.number()) - before) / (realNow() - start);
    std::printf("a process that waits and hears of nothing: %.3f %% of a processor; ", 100 * share);
    return share < 0.001 || extent.seconds < ordinary.seconds;
}

bool addNames(const Extent& /*extent*/) {
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

/// Changes some of a file's bytes, or its length.
void damage(std::string& bytes, std::mt19937& random) {
    if (random() % 8 == 0) bytes.resize(random() % (2 * bytes.size()));
    for (auto changes = random() % 4; changes > 0 && !bytes.empty(); --changes) {
        const std::size_t at = random() % bytes.size();
        const std::size_t count = std::min<std::size_t>(1 + random() % 300, bytes.size() - at);
        const bool isZero = random() % 2 == 0;
        std::generate_n(bytes.begin() + static_cast<std::ptrdiff_t>(at), count,
                        [&] { return isZero ? '\0' : static_cast<char>(random()); });
    }
}

/// What a table whose file holds these bytes does: serves, or is refused.
bool isServed(const fs::path& path, const std::string& bytes) {
    writeText(path, bytes);
    try {
        NotificationTable table{path};
        if (table.findOrAdd("new") == nullptr) throw std::logic_error("no room");
        table.post("new");
        const NotificationTable again{path};
        return true;
    } catch (const std::runtime_error&) {
        return false;
    }
}

bool damageFiles(const Extent& extent) {
    const Ground ground;
    {
        NotificationTable table{ground.table()};
        for (int i = 0; i < 100; ++i) table.findOrAdd("name." + std::to_string(i));
    }
    const std::string sound = readText(ground.table());
    std::mt19937 random{1};
    int tried = 0;
    int served = 0;
    for (const double end = realNow() + extent.seconds; realNow() < end; ++tried) {
        std::string bytes = sound;
        damage(bytes, random);
        served += isServed(ground.table(), bytes);
    }
    std::printf("%d damaged tables: %d refused, the rest serve; ", tried, tried - served);
    return tried > served && served > 0;
}

/// Runs one part; it has printed what it tried.
bool holds(bool (*part)(const Extent&), const Extent& extent) {
    const bool isHolding = part(extent);
    std::puts(isHolding ? "holds" : "FAILS");
    std::fflush(stdout);
    return isHolding;
}

int run(const Extent& extent) {
    bool isHolding = true;
    for (const auto part :
         {killInWaits, killPosters, waitIdly, liveAndDie, addNames, damageFiles}) {
        isHolding = holds(part, extent) && isHolding;
    }
    return isHolding ? 0 : 1;
}

Extent extentOf(int argc, char** argv) {
    const std::string word = argc > 1 ? argv[1] : "";
    if (word == "--short") return shortOne;
    return word == "--long" ? longOne : ordinary;
}

}  // namespace
}  // namespace quillet::test

int main(int argc, char** argv) { return quillet::test::run(quillet::test::extentOf(argc, argv)); }
