// SPDX-License-Identifier: MIT
#include "bench/bus.h"

#include <cstdint>
#include <limits>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace quillet::bench {

namespace {

constexpr char path[] = "/quillet";
constexpr char interface[] = "quillet.Notifications";

/// What a function of the bus answers, unless it is an error.
int sound(int answer, const char* what) {
    if (answer < 0) throw std::system_error(-answer, std::generic_category(), what);
    return answer;
}

sd_bus* openBus() {
    sd_bus* bus = nullptr;
    sound(sd_bus_open_user(&bus), "no message bus");
    return bus;
}

int call(sd_bus_message* /*message*/, void* work, sd_bus_error* /*error*/) {
    (*static_cast<Bus::Work*>(work))();
    return 0;
}

}  // namespace

Bus::Bus() : bus_{openBus()} {}

void Bus::post(const std::string& name) {
    sound(sd_bus_emit_signal(bus_.get(), path, interface, name.c_str(), ""), "no signal");
    sound(sd_bus_flush(bus_.get()), "the bus is full");
}

void Bus::observe(const std::string& name, Work work) {
    Work& kept = observers_.emplace_back(std::move(work));
    sound(sd_bus_match_signal(bus_.get(), nullptr, nullptr, path, interface, name.c_str(), call,
                              &kept),
          "no match");
}

void Bus::run() {
    constexpr auto forEver = std::numeric_limits<std::uint64_t>::max();
    while (!isStopped_) {
        const int answer = sound(sd_bus_process(bus_.get(), nullptr), "the bus is gone");
        if (answer == 0) sound(sd_bus_wait(bus_.get(), forEver), "the bus is gone");
    }
}

}  // namespace quillet::bench
