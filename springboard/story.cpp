// SPDX-License-Identifier: MIT
#include "springboard/story.h"

#include <algorithm>
#include <iomanip>
#include <sstream>

namespace quillet {

using standin::TraceRecord;

namespace {

constexpr char bold[] = "\033[1m";
constexpr char dim[] = "\033[2m";
constexpr char cyan[] = "\033[36m";
/// Wider than every preference's name.
constexpr std::size_t labelWidth = 21;

std::string fixed(double number, int digits, int width) {
    std::ostringstream text;
    text << std::fixed << std::setprecision(digits) << std::setw(width) << number;
    return text.str();
}

/// "   1005.2 ms  "
std::string timeMargin(double seconds) { return fixed(seconds * 1000, 1, 9) + " ms  "; }

std::string row(const std::string& label, const std::string& text) {
    const std::size_t blanks = labelWidth - std::min(labelWidth - 1, label.size());
    return "  " + label + std::string(blanks, ' ') + text + '\n';
}

}  // namespace

std::string Story::painted(const char* color, const std::string& text) const {
    return isColored_ ? color + text + "\033[m" : text;
}

void Story::tellHeading(const char* heading) {
    if (stream_ != nullptr) *stream_ << painted(bold, heading) + '\n';
}

void Story::tellAt(double time, const std::string& text, bool isDim) {
    if (stream_ == nullptr) return;
    *stream_ << painted(dim, timeMargin(time - start_)) + (isDim ? painted(dim, text) : text) + '\n'
             << std::flush;
}

void Story::open(double time, const std::string& model, const PhoneNow& phone) {
    start_ = time;
    before_ = phone;
    tellHeading("What decides:");
    const bool isPod = model.find("iPod") != std::string::npos;
    const char* const meaning = isPod ? "an iPod: the ringtone volume is kept and changed"
                                      : "no iPod: the ringtone volume stays as it is";
    if (stream_ != nullptr) *stream_ << row(model, meaning) << std::flush;
}

void Story::begin(const TraceRecord& record) {
    for (const Step& step : steps_.begin(record)) {
        note(step);
        tell(step);
    }
}

void Story::end(const TraceRecord& record, double duration) {
    for (const Step& step : steps_.end(record, duration)) tell(step);
}

void Story::note(const Step& step) {
    isPosted_ = isPosted_ || step.label.starts_with("state ") || step.label == "post";
    isShown_ = isShown_ || step.label == "indicator";
    isMuteSet_ = isMuteSet_ || step.label == "mute" || step.label == "unmute";
    hasBuzzed_ = hasBuzzed_ || step.label == "buzz";
}

void Story::tell(const Step& step) {
    if (step.kind == Step::Kind::decision) {
        if (stream_ != nullptr) *stream_ << row(step.label, step.text) << std::flush;
        return;
    }
    if (!hasSteps_) tellHeading("What happens:");
    hasSteps_ = true;
    if (step.kind == Step::Kind::waitBegins) {
        waitStart_ = step.time;
        tellAt(step.time, ".-- " + step.text, true);
    } else if (step.kind == Step::Kind::waitEnds) {
        tellAt(step.time, "'-- " + fixed((step.time - waitStart_) * 1000, 1, 0) + " ms later",
               true);
    } else if (step.depth > 0) {
        tellAt(step.time, painted(dim, "|   ") + painted(cyan, step.text), false);
    } else {
        tellAt(step.time, step.text, false);
    }
}

/// A host without the classes for it is no failure: the switch passes over what is not there.
void Story::tellOmissions() {
    if (!isPosted_ || stream_ == nullptr) return;
    if (!isShown_) *stream_ << "  No indicator was shown: the host has none that answers.\n";
    if (!isMuteSet_) *stream_ << "  The mute was left: the host has nobody who answers for it.\n";
}

void Story::close(double time, const std::string& word, const PhoneNow& phone) {
    duration_ = time - start_;
    after_ = phone;
    if (stream_ == nullptr) return;
    if (!hasSteps_) *stream_ << "Nothing was asked for, and nothing done.\n";
    tellOmissions();
    *stream_ << painted(bold, "Now: ") + word + ", " + inWords(after_) + '\n' +
                    painted(bold, "Left behind: ") + leftBehind(before_, after_) + '\n'
             << std::flush;
}

std::string Story::outcome() const {
    const std::string ringer =
        after_.isMuted.value_or(false) ? "The ringer is muted" : "The ringer is not muted";
    const std::string unset = isMuteSet_ ? "" : ", as the host has nobody who answers for it";
    const std::string time =
        duration_ < 0.1 ? fixed(duration_ * 1000, 1, 0) + " ms" : fixed(duration_, 2, 0) + " s";
    return ringer + unset + (hasBuzzed_ ? "; it buzzed." : "; it did not buzz.") + " It took " +
           time + '.';
}

}  // namespace quillet
