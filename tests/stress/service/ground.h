// SPDX-License-Identifier: MIT
#pragma once

#include <sys/types.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <limits>
#include <stdexcept>
#include <thread>

#include "platform/standin/device/device.h"
#include "tests/support/child.h"
#include "tests/support/program.h"
#include "tests/support/real_time.h"
#include "tests/support/shared_number.h"
#include "tests/support/temporary_folder.h"

namespace quillet::test {

/// The notification that everybody posts and watches.
inline constexpr char name[] = "a.name";
inline constexpr double forEver = std::numeric_limits<double>::infinity();

/// A device.
class Ground {
public:
    Ground() { standin::makeNewPhone(root(), {}); }

    std::filesystem::path root() const { return folder_.path() / "root"; }
    std::filesystem::path table() const {
        return root().string() + standin::DeviceRoot::notificationsPath;
    }

private:
    TemporaryFolder folder_;
};

/// A process that waits for posts of `name` for as long as the object lives, and notes when it saw
/// the last.
class Watcher {
public:
    explicit Watcher(const std::filesystem::path& root)
        : process_{[this, root] {
              standin::Device device{{.root = root}};
              standin::NotificationTable::Entry& entry = *device.notifications.findOrAdd(name);
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

/// A process that does nothing but sleep, again and again for as long as who waits for posts, and
/// notes by how many seconds it was woken too late at most: so late is this machine by itself.
class Sleeper {
public:
    Sleeper()
        : process_{[this] {
              constexpr double length = standin::EventLoop::betweenLooks;
              for (;;) {
                  const double start = realNow();
                  std::this_thread::sleep_for(standin::Bell::longestWait);
                  *late_ = std::max(late_->load(), realNow() - start - length);
              }
              return 0;
          }} {}

    double lateness() const { return *late_; }
    pid_t number() const { return process_.number(); }

private:
    struct Late : SharedNumber<double> {
        std::atomic<double>* operator->() const { return &**this; }
    };
    Late late_;
    Child process_;
};

/// Whether a post that nobody waits for makes no system call, once the last wait would be over of
/// those who died in one.
bool postIsFree(standin::Device& device);

}  // namespace quillet::test
