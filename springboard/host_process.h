// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <ostream>
#include <string>

#include "platform/standin/device/device.h"
#include "platform/standin/runtime/data_source.h"
#include "springboard/options.h"
#include "springboard/story.h"
#include "springboard/trace_writer.h"

namespace quillet {

/// One run of the host program: a device, with the bundle loaded into it.
class HostProcess {
public:
    /// Throws std::runtime_error when the root, the bundle or the trace file cannot be used.
    explicit HostProcess(const Options& options);

    void printState();
    /// Sends the switch `state`, or the tap when there is none, and prints the state afterwards.
    /// Waits for its turn before that. See holdSignals for the signals that come meanwhile, which
    /// are obeyed at the end.
    FSSwitchState apply(std::optional<std::int32_t> state);
    /// The same, and on a terminal a line of what came of it. Throws std::runtime_error when the
    /// switch then has another state than `state`.
    void flip(std::optional<std::int32_t> state);
    /// Prints the state at each refresh, or, where `isQuiet` is false, the state now and what the
    /// journal then tells of whatever can be seen and felt, until the process is interrupted.
    /// Throws std::runtime_error when the device goes.
    void watch(bool isQuiet);

private:
    void startTrace(const Options& options);
    /// Hands what is recorded to the trace and the story, where there are such.
    void listen();
    void watchQuietly();
    void watchJournal();
    /// Whether what is printed and traced can still be written.
    bool isHeard() const;
    /// Has `work` done now and then while the event loop runs, which ends when it answers false or
    /// a signal comes.
    void repeat(std::function<bool()> work);
    /// Ends the process by a signal that came, which the journal is told.
    void obeySignal();
    FSSwitchState state() const;
    /// Answers the state afterwards.
    FSSwitchState send(std::optional<std::int32_t> state);
    void sendMessage(std::optional<std::int32_t> state);
    void print(FSSwitchState state) const;
    /// Throws std::runtime_error when the notification service is not what others have any more.
    void checkService() const;
    /// Throws std::runtime_error when something that was printed or traced could not be written.
    void checkOutput() const;
    /// Throws AlreadySaid when the device had to complain.
    void checkDevice() const;
    /// Prints the state, with both.
    void report(FSSwitchState state) const;
    NSString identifier() const { return standin::makeString(identifier_); }

    const Options options_;
    /// Where states go.
    std::ostream& output_;
    /// Null when nothing is traced.
    std::unique_ptr<TraceWriter> trace_;
    /// Null when nothing is told.
    std::unique_ptr<Story> story_;
    bool tellsOutcome_ = false;
    standin::Device device_;
    std::string identifier_;
    standin::FSSwitchDataSource* switch_ = nullptr;
};

}  // namespace quillet
