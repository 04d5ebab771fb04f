// SPDX-License-Identifier: MIT
#include "springboard/host_process.h"

#include <unistd.h>

#include <cmath>
#include <iostream>
#include <limits>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <utility>

#include "program/output.h"
#include "program/signals.h"
#include "program/terminal.h"
#include "program/wall_clock.h"
#include "springboard/messages.h"
#include "springboard/phone.h"
#include "springboard/phone_now.h"
#include "springboard/watch_report.h"

namespace quillet {

using standin::Told;
using standin::TraceRecord;

namespace {

const char* wordFor(FSSwitchState state) { return state == FSSwitchStateOn ? "on" : "off"; }

/// Whether standard output is one document, in which no state must stand.
bool traceIsOutput(const Options& options) {
    return options.traceFile == "-" && options.traceFormat == TraceFormat::chrome;
}

/// The switch's own reading has said what is to be said of the files.
PhoneNow lookQuietly(const standin::Device& device) {
    standin::Complaints unsaid;
    return lookAt(device.root, device.hardware, unsaid);
}

/// What the wall clock showed when this clock was made.
std::int64_t startOf(const standin::Clock& clock) {
    return timeNow() - std::llround(clock.now() * double{microsecondsPerSecond});
}

}  // namespace

HostProcess::HostProcess(const Options& options)
    : options_{options},
      output_{traceIsOutput(options) ? std::cerr : std::cout},
      device_{{.root = rootOf(options),
               .newFiles = newFiles(),
               .machine = options.machine,
               .host = options.host,
               .clock = options.clock,
               .complain = [this](auto& text) { sayError(options_.json, text); },
               .author = {"springboard", options.command}}} {
    if (device_.isNew) tellNewPhone(options, device_.root.path());
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
    output_ << (options_.json ? toLine({{"state", word}}) : word) << std::endl;
}

void HostProcess::checkService() const {
    if (device_.notifications.isInPlace()) return;
    const std::filesystem::path& root = device_.root.path();
    if (!std::filesystem::exists(root))
        throw std::runtime_error(root.string() + ": the device is gone");
    throw std::runtime_error("the notification service was removed, replaced or damaged meanwhile");
}

void HostProcess::checkOutput() const {
    finishOutput();
    if (trace_ != nullptr && !trace_->isWritten())
        throw std::runtime_error("the trace cannot be written");
}

void HostProcess::checkDevice() const {
    if (!device_.complaints.isEmpty()) throw AlreadySaid{};
}

FSSwitchState HostProcess::state() const { return switch_->stateForSwitchIdentifier(identifier()); }

void HostProcess::report(FSSwitchState state) const {
    print(state);
    checkOutput();
    checkDevice();
}

void HostProcess::printState() {
    const FSSwitchState now = state();
    checkService();
    report(now);
}

FSSwitchState HostProcess::send(std::optional<std::int32_t> state) {
    const Turn turn = takeTurn(options_, device_.root.path());
    checkService();  // The device may have been erased meanwhile.
    // The settings that the switch changes for a while are the user's.
    holdSignals();
    if (story_ != nullptr) {
        listen();
        story_->open(device_.clock.now(), device_.machine, lookQuietly(device_));
    }
    sendMessage(state);
    const double end = device_.clock.now();
    const FSSwitchState now = this->state();
    if (story_ != nullptr) story_->close(end, wordFor(now), lookQuietly(device_));
    checkService();
    return now;
}

void HostProcess::sendMessage(std::optional<std::int32_t> state) {
    if (state) {
        device_.journal.add("applying", Told{"state", *state});
        switch_->applyState(static_cast<FSSwitchState>(*state), identifier());
    } else {
        device_.journal.add("applying");
        switch_->applyActionForSwitchIdentifier(identifier());
    }
    // The switch's own post comes back to it, as in a host whose run loop goes on.
    device_.eventLoop.turn();
}

FSSwitchState HostProcess::apply(std::optional<std::int32_t> state) {
    const FSSwitchState now = send(state);
    device_.journal.add("applied", Told{"state", int{now}});
    report(now);
    if (tellsOutcome_) std::cerr << story_->outcome() + '\n';
    if (trace_ != nullptr) trace_->finish();
    obeySignal();
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

void HostProcess::obeySignal() {
    const int signal = heldSignal();
    if (signal != 0) device_.journal.add("ended", Told{"signal", signal});
    obeyHeldSignal();
}

void HostProcess::repeat(std::function<bool()> work) {
    const bool goesOn = heldSignal() == 0 && work();
    if (!goesOn) return device_.eventLoop.stop();
    device_.eventLoop.at(device_.clock.now() + standin::EventLoop::betweenLooks,
                         [this, work = std::move(work)] { repeat(work); });
}

void HostProcess::watchQuietly() {
    // No exception from here: the bundle's frames, which know none, are between us and watch().
    device_.framework.setRedraw(
        [this](std::string_view /*identifier*/, FSSwitchState state) { print(state); });
    device_.eventLoop.at(0, [this] { repeat([this] { return isHeard(); }); });
    device_.eventLoop.runUntil(std::numeric_limits<double>::infinity());
}

bool HostProcess::isHeard() const { return output_ && (trace_ == nullptr || trace_->isWritten()); }

void HostProcess::watchJournal() {
    WatchReport report{device_.below(standin::DeviceRoot::journalPath), options_.json, output_};
    report.begin(state());
    device_.eventLoop.at(0, [&] {
        repeat([&] {
            report.tellNew();
            return isHeard();
        });
    });
    device_.eventLoop.runUntil(std::numeric_limits<double>::infinity());
    report.tellNew();
}

void HostProcess::watch(bool isQuiet) {
    holdSignals();
    if (isQuiet) {
        watchQuietly();
    } else {
        watchJournal();
    }
    obeySignal();
    checkService();
    checkOutput();
    checkDevice();
}

}  // namespace quillet
