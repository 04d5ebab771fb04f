// SPDX-License-Identifier: MIT
#include "springboard/session.h"

#include <iostream>
#include <limits>
#include <stdexcept>

namespace quillet {

using standin::TraceRecord;

Session::Session(const Options& options)
    : json_{options.json},
      device_{{.root = options.root, .machine = options.machine, .host = options.host}} {
    if (options.traces) startTrace(options.traceFile);
    identifier_ = device_.framework.load(options.bundle);
    switch_ = device_.framework.dataSource(identifier_);
}

void Session::startTrace(const std::filesystem::path& file) {
    if (!file.empty()) {
        traceFile_.open(file);
        if (!traceFile_) throw std::runtime_error(file.string() + ": cannot be written");
    }
    // Each line at once: a reader may follow the trace while the switch runs.
    device_.trace.setSink([&lines = file.empty() ? std::cerr : traceFile_](
                              const TraceRecord& record) { lines << toJSON(record) << std::endl; });
}

void Session::print(FSSwitchState state) const {
    const char* const word = state == FSSwitchStateOn ? "on" : "off";
    if (json_) {
        std::cout << R"({"state": ")" << word << R"("})" << std::endl;
    } else {
        std::cout << word << std::endl;
    }
    if (!std::cout) throw std::runtime_error("standard output cannot be written");
}

void Session::printState() { print(switch_->stateForSwitchIdentifier(identifier())); }

void Session::apply(std::optional<std::int32_t> state) {
    if (state) {
        switch_->applyState(static_cast<FSSwitchState>(*state), identifier());
    } else {
        switch_->applyActionForSwitchIdentifier(identifier());
    }
    // The switch's own post comes back to it, as in a host whose run loop goes on.
    device_.runLoop.turn();
    printState();
}

void Session::watch() {
    device_.framework.setRedraw(
        [this](std::string_view /*identifier*/, FSSwitchState state) { print(state); });
    for (;;) device_.runLoop.runUntil(std::numeric_limits<double>::infinity());
}

}  // namespace quillet
