// SPDX-License-Identifier: MIT
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <string>
#include <thread>

#include "tests/stress/service/ground.h"
#include "tests/stress/service/parts.h"

namespace quillet::test {

namespace {

/// The seconds of processor time that a process has taken. See proc(5), schedstat.
double processorTime(pid_t process) {
    const std::string file = "/proc/" + std::to_string(process) + "/schedstat";
    return std::stod(readText(file)) / 1e9;
}

}  // namespace

bool waitIdly(const ServiceExtent& extent) {
    const Ground ground;
    const Watcher watcher{ground.root()};
    const double start = realNow();
    const double before = processorTime(watcher.number());
    std::this_thread::sleep_for(std::chrono::duration<double>{std::min(extent.seconds, 60.0)});
    const double share = (processorTime(watcher.number()) - before) / (realNow() - start);
    std::printf("a process that waits and hears of nothing: %.3f %% of a processor; ", 100 * share);
    return share < 0.001 || !extent.isMeasured;
}

}  // namespace quillet::test
