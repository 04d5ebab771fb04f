// SPDX-License-Identifier: MIT
#include "springboard/host_process.h"

#include <unistd.h>

#include <chrono>
#include <iostream>
#include <limits>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "program/terminal.h"
#include "springboard/phone.h"
#include "springboard/phone_now.h"
#include "springboard/signals.h"

namespace quillet {

using standin::TraceRecord;

namespace {

const char* wordFor(FSSwitchState state) { return state == FSSwitchStateOn ? "on" : "off"; }

/// Whether standard output is one document, in which no state must stand.
bool traceIsOutput(const Options& options) {
    return options.traceFile == "-" && options.traceFormat == TraceFormat::chrome;
}

/// What the wall clock showed when this clock was made.
std::chrono::system_clock::time_point startOf(const standin::Clock& clock) {
    const std::chrono::duration<double> since{clock.now()};
    return std::chrono::system_clock::now() -
           std::chrono::duration_cast<std::chrono::system_clock::duration>(since);
}

}  // namespace

HostProcess::HostProcess(const Options& options)
    : json_{options.json},
      output_{traceIsOutput(options) ? std::cerr : std::cout},
      device_{{.root = rootOf(options),
               .newFiles = newFiles(),
               .machine = options.machine,
               .host = options.host,
               .clock = options.clock}} {
    if (device_.isNew) tellNewPhone(device_.root.path());
    if (options.traces) startTrace(options);
    if (options.explains) {
        story_ = std::make_unique<Story>(&std::cerr, hasColors(options.color, STDERR_FILENO));
    }
    if (trace_ != nullptr) listen();
    identifier_ = device_.framework.load(bundleOf(options));
    switch_ = device_.framework.dataSource(identifier_);
}

void HostProcess::startTrace(const Options& options) {
    trace_ =
        std::make_unique<TraceWriter>(options.traceFile, options.traceFormat,
                                      TraceOrigin{startOf(device_.clock), getpid(), "springboard",
                                                  device_.machine, standin::textOf(device_.host)});
}

void HostProcess::listen() {
    device_.trace.setSink(
        [this](const TraceRecord& record) {
            if (trace_ != nullptr) trace_->begin(record);
            if (story_ != nullptr) story_->begin(record);
        },
        [this](const TraceRecord& record, double duration) {
            if (trace_ != nullptr) trace_->end(record, duration);
            if (story_ != nullptr) story_->end(record, duration);
        });
}

void HostProcess::print(FSSwitchState state) const {
    const char* const word = wordFor(state);
    output_ << (json_ ? toLine({{"state", word}}) : word) << std::endl;
}

void HostProcess::checkService() const {
    if (device_.notifications.isInPlace()) return;
    throw std::runtime_error("the notification service was removed, replaced or damaged meanwhile");
}

void HostProcess::checkOutput() const {
    if (!std::cout) throw std::runtime_error("standard output cannot be written");
    if (trace_ != nullptr && !trace_->isWritten())
        throw std::runtime_error("the trace cannot be written");
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
    if (story_ == nullptr) {
        sendMessage(state);
        return this->state();
    }
    listen();
    story_->open(device_.clock.now(), device_.machine, lookAt(device_));
    sendMessage(state);
    const double end = device_.clock.now();
    const FSSwitchState now = this->state();
    story_->close(end, wordFor(now), lookAt(device_));
    return now;
}

void HostProcess::sendMessage(std::optional<std::int32_t> state) {
    if (state) {
        switch_->applyState(static_cast<FSSwitchState>(*state), identifier());
    } else {
        switch_->applyActionForSwitchIdentifier(identifier());
    }
    // The switch's own post comes back to it, as in a host whose run loop goes on.
    device_.eventLoop.turn();
}

FSSwitchState HostProcess::apply(std::optional<std::int32_t> state) {
    const FSSwitchState now = send(state);
    report(now);
    if (tellsOutcome_) std::cerr << story_->outcome() + '\n';
    if (trace_ != nullptr) trace_->finish();
    obeyHeldSignal();
    return now;
}

void HostProcess::flip(std::optional<std::int32_t> state) {
    if (story_ == nullptr && isatty(STDERR_FILENO) == 1) {
        story_ = std::make_unique<Story>(nullptr, false);
        tellsOutcome_ = true;
    }
    const FSSwitchState now = apply(state);
    if (!state || now == *state) return;
    throw std::runtime_error(std::string{"the flip did not come about: the switch is "} +
                             wordFor(now));
}

void HostProcess::watch() {
    // No exception from here: the bundle's frames, which know none, are between us and watch().
    device_.framework.setRedraw([this](std::string_view /*identifier*/, FSSwitchState state) {
        print(state);
        const bool isTraced = trace_ == nullptr || trace_->isWritten();
        if (!output_ || !isTraced) device_.eventLoop.stop();
    });
    device_.eventLoop.runUntil(std::numeric_limits<double>::infinity());
    checkService();
    checkOutput();
}

}  // namespace quillet
