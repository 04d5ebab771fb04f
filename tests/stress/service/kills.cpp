// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cstdio>

#include "platform/notify.h"
#include "tests/stress/service/ground.h"
#include "tests/stress/service/parts.h"
#include "tests/support/traced.h"

namespace quillet::test {

using standin::Device;
using standin::NotificationTable;

bool killInWaits(const ServiceExtent& extent) {
    const Ground ground;
    Device device{{.root = ground.root()}};
    device.observers.add(name, [] {});
    const double end = realNow() + extent.seconds;
    int killed = 0;
    for (; killed < extent.killsInWaits && (!extent.isBounded || realNow() < end); ++killed) {
        Gate waits;
        Child waiting{[&] {
            device.eventLoop.at(0, [&] { waits.open(); });
            device.eventLoop.runUntil(forEver);
            return 1;
        }};
        if (!waits.pass()) return false;
    }
    std::printf("%d processes killed inside a wait; ", killed);
    return postIsFree(device);
}

bool killPosters(const ServiceExtent& extent) {
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
        isOver = traced([] { notify_post(name); }).step(at) < at;
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

}  // namespace quillet::test
