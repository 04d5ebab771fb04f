// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/standin/device/host_variant.h"
#include "tests/model/trace_world.h"

namespace quillet::test {

/// What a property-list file of the phone holds: nothing, as there is none; what is no dictionary;
/// or flags, numbers and texts.
struct FileContent {
    enum class Kind { absent, unreadable, dictionary };

    Kind kind = Kind::absent;
    std::map<std::string, standin::TraceValue> entries = {};

    bool operator==(const FileContent&) const = default;
};

/// All of a phone that the switch reads or changes.
struct Situation {
    FileContent choices;
    FileContent settings;
    std::string machine;
    standin::HostVariant host;
    bool registers = true;
    /// Whether files can be written.
    bool hasRoom = true;
    std::uint64_t word = 0;
    /// Whether the ringer's name was posted since the observer was last called.
    bool isPosted = false;
    /// Nothing when the hardware's file cannot be read.
    std::optional<float> volume;
    bool isMuted = false;
    double time = 0;
};

/// The world as it must answer, held against a trace. Throws Mismatch where that says otherwise.
class Simulation : public World {
public:
    /// Both references must outlive the simulation.
    Simulation(const std::vector<standin::TraceRecord>& trace, Situation& situation)
        : trace_{trace}, now_{situation} {}

    /// Begins with the trace anew. `outside` is done after the call numbered `meddlesAt`, the first
    /// being 1, as it was done to the phone.
    void begin(std::size_t meddlesAt, std::function<void(Situation&)> outside);

    Reply call(const ExpectedCall& call) override;
    bool callsObserver() override;
    bool takesActivate() override {
        return now_.host.indicator == standin::HostVariant::Indicator::instance;
    }

    /// A turn of the host's own: whether the observer is called in it.
    bool turn();
    /// Throws Mismatch when the trace goes on.
    void expectEnd() const;

private:
    struct Answer {
        std::optional<standin::TraceValue> answer = {};
        std::optional<standin::TraceValue> filledIn = {};
    };

    Answer answer(const ExpectedCall& call);
    Answer answerService(const ExpectedCall& call);
    Answer answerDictionary(const ExpectedCall& call);
    Answer answerHost(const ExpectedCall& call);
    Answer read(const ExpectedCall& call);
    Answer find(const std::string& key);
    Answer write(const std::string& path);

    TraceWorld trace_;
    Situation& now_;
    std::size_t meddlesAt_ = 0;
    std::function<void(Situation&)> outside_;
    /// The dictionary that the switch works with, and what it last found there.
    FileContent dictionary_;
    standin::TraceValue found_;
    /// When the wait that is under way ends, and whether its last turn is over.
    double waitEnds_ = 0;
    bool hasWaited_ = false;
};

}  // namespace quillet::test
