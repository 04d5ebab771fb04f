// SPDX-License-Identifier: MIT
#pragma once

#include <ostream>
#include <string>

#include "platform/standin/device/trace.h"
#include "springboard/phone_now.h"
#include "springboard/steps.h"

namespace quillet {

/// A flip in words, made of the records of its trace: what decides, each step with its time, waits
/// with what happens in them, and what came of it. No line is longer than 80 columns, unless the
/// model's name is long.
class Story {
public:
    /// Tells to `stream`, which must outlive the story, each step as it comes; to null only the
    /// outcome is kept.
    Story(std::ostream* stream, bool isColored) : stream_{stream}, isColored_{isColored} {}

    /// The flip begins: at `time` of the trace, on a phone of that model.
    void open(double time, const std::string& model, const PhoneNow& phone);
    void begin(const standin::TraceRecord& record);
    void end(const standin::TraceRecord& record, double duration);
    /// It has ended, and left the switch in the state `word`.
    void close(double time, const std::string& word, const PhoneNow& phone);

    /// What came of it, in a line: "The ringer is muted; it buzzed. It took 1.01 s."
    std::string outcome() const;

private:
    void tell(const Step& step);
    void note(const Step& step);
    void tellHeading(const char* heading);
    void tellAt(double time, const std::string& text, bool isDim);
    void tellOmissions();
    std::string painted(const char* color, const std::string& text) const;

    std::ostream* stream_;
    bool isColored_;
    StepReader steps_;
    PhoneNow before_;
    PhoneNow after_;
    double start_ = 0;
    double duration_ = 0;
    double waitStart_ = 0;
    bool hasSteps_ = false;
    bool isPosted_ = false;
    bool isShown_ = false;
    bool isMuteSet_ = false;
    bool hasBuzzed_ = false;
};

}  // namespace quillet
