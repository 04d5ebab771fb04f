// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
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
    /// Prints the state at each refresh, until the process is interrupted.
    void watch();

private:
    void startTrace(const Options& options);
    /// Hands what is recorded to the trace and the story, where there are such.
    void listen();
    FSSwitchState state() const;
    /// Answers the state afterwards.
    FSSwitchState send(std::optional<std::int32_t> state);
    void sendMessage(std::optional<std::int32_t> state);
    void print(FSSwitchState state) const;
    /// Throws std::runtime_error when the notification service is not what others have any more.
    void checkService() const;
    /// Throws std::runtime_error when something that was printed or traced could not be written.
    void checkOutput() const;
    /// Both.
    void report(FSSwitchState state) const;
    NSString identifier() const { return standin::makeString(identifier_); }

    bool json_;
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
