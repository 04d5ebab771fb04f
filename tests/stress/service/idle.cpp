// SPDX-License-Identifier: MIT
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <string>
#include <thread>
#include <vector>

#include "tests/stress/service/ground.h"
#include "tests/stress/service/parts.h"

namespace quillet::test {

namespace {

/// What a process takes of a processor from when this is made.
class Share {
public:
    explicit Share(pid_t process) : process_{process} {}

    double soFar() const { return (processorTime() - before_) / (realNow() - start_); }

private:
    /// In seconds. See proc(5), schedstat.
    double processorTime() const {
        const std::string file = "/proc/" + std::to_string(process_) + "/schedstat";
        return std::stod(readText(file)) / 1e9;
    }

    pid_t process_;
    double start_ = realNow();
    double before_ = processorTime();
};

/// A program that waits on a device and hears of nothing; `words` are the shell's.
struct Idler : Child {
    Idler(const std::filesystem::path& root, const std::filesystem::path& program,
          const std::string& words)
        : Child{[&] {
              const std::string line = "exec \"$0\" --root \"$1\" " + words + " >/dev/null";
              execl("/bin/sh", "sh", "-c", line.c_str(), program.c_str(), root.c_str(), nullptr);
              return 1;
          }} {}
};

}  // namespace

bool waitIdly(const ServiceExtent& extent) {
    const Ground ground;
    Idler idlers[] = {{ground.root(), extent.programs / "springboard", "watch"},
                      {ground.root(), extent.programs / "springboard", "watch --quiet"},
                      {ground.root(), extent.programs / "notifyutil", std::string{"-w "} + name}};
    const Sleeper sleeper;
    // What a program does before it waits.
    std::this_thread::sleep_for(std::chrono::seconds{1});
    const Share least{sleeper.number()};
    std::vector<Share> shares;
    for (const Idler& idler : idlers) shares.emplace_back(idler.number());
    std::this_thread::sleep_for(std::chrono::duration<double>{std::min(extent.seconds, 60.0)});
    bool isHolding = std::ranges::all_of(idlers, &Idler::isRunning);
    std::printf("programs that wait and hear of nothing:");
    for (const Share& share : shares) {
        const double part = share.soFar();
        std::printf(" %.3f", 100 * part);
        isHolding = isHolding && (part < 0.001 || !extent.isMeasured);
    }
    std::printf(" %% of a processor, where a bare sleep takes %.3f; ", 100 * least.soFar());
    return isHolding;
}

}  // namespace quillet::test
