// SPDX-License-Identifier: MIT
#include "springboard/host_process.h"

#include <iostream>
#include <limits>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "springboard/phone.h"
#include "springboard/signals.h"
#include "springboard/trace_format.h"

namespace quillet {

using standin::TraceRecord;

namespace {

const char* wordFor(FSSwitchState state) { return state == FSSwitchStateOn ? "on" : "off"; }

}  // namespace

HostProcess::HostProcess(const Options& options)
    : json_{options.json},
      device_{{.root = rootOf(options),
               .newFiles = newFiles(),
               .machine = options.machine,
               .host = options.host,
               .clock = options.clock}} {
    if (device_.isNew) tellNewPhone(device_.root.path());
    if (options.traces) startTrace(options);
    identifier_ = device_.framework.load(bundleOf(options));
    switch_ = device_.framework.dataSource(identifier_);
}

void HostProcess::startTrace(const Options& options) {
    const std::filesystem::path& file = options.traceFile;
    if (!file.empty()) {
        traceFile_.open(file);
        if (!traceFile_) throw std::runtime_error(file.string() + ": cannot be written");
    }
    trace_ = file.empty() ? &std::cerr : &traceFile_;
    // Each line at once: a reader may follow the trace while the switch runs.
    device_.trace.setSink([this, format = options.traceFormat](const TraceRecord& record) {
        const bool isText = format == TraceFormat::text;
        const std::string line = isText ? toText(record) : toLine(toJSON(record));
        *trace_ << line + '\n' << std::flush;
    });
}

void HostProcess::print(FSSwitchState state) const {
    const char* const word = wordFor(state);
    std::cout << (json_ ? toLine({{"state", word}}) : word) << std::endl;
}

void HostProcess::checkService() const {
    if (device_.notifications.isInPlace()) return;
    throw std::runtime_error("the notification service was removed, replaced or damaged meanwhile");
}

void HostProcess::checkOutput() const {
    if (!std::cout) throw std::runtime_error("standard output cannot be written");
    if (trace_ != nullptr && !*trace_) throw std::runtime_error("the trace cannot be written");
}

FSSwitchState HostProcess::state() const { return switch_->stateForSwitchIdentifier(identifier()); }

void HostProcess::report(FSSwitchState state) const {
    checkService();
    print(state);
    checkOutput();
}

void HostProcess::printState() { report(state()); }

FSSwitchState HostProcess::send(std::optional<std::int32_t> state) {
    const Turn turn = takeTurn(device_.root.path());
    checkService();  // The device may have been erased meanwhile.
    // The settings that the switch changes for a while are the user's.
    holdSignals();
    if (state) {
        switch_->applyState(static_cast<FSSwitchState>(*state), identifier());
    } else {
        switch_->applyActionForSwitchIdentifier(identifier());
    }
    // The switch's own post comes back to it, as in a host whose run loop goes on.
    device_.eventLoop.turn();
    return this->state();
}

FSSwitchState HostProcess::apply(std::optional<std::int32_t> state) {
    const FSSwitchState now = send(state);
    report(now);
    obeyHeldSignal();
    return now;
}

void HostProcess::flip(std::optional<std::int32_t> state) {
    const FSSwitchState now = apply(state);
    if (!state || now == *state) return;
    throw std::runtime_error(std::string{"the flip did not come about: the switch is "} +
                             wordFor(now));
}

void HostProcess::watch() {
    // No exception from here: the bundle's frames, which know none, are between us and watch().
    device_.framework.setRedraw([this](std::string_view /*identifier*/, FSSwitchState state) {
        print(state);
        if (!std::cout || !traceFile_) device_.eventLoop.stop();
    });
    device_.eventLoop.runUntil(std::numeric_limits<double>::infinity());
    checkService();
    checkOutput();
}

}  // namespace quillet
