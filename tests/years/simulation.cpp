// SPDX-License-Identifier: MIT
#include "tests/years/simulation.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <utility>

#include "tests/support/calls.h"

namespace quillet::test {

using standin::HostVariant;
using standin::TraceValue;
using Kind = FileContent::Kind;

namespace {

const std::string stateName = "com.apple.springboard.ringerstate";
const std::string choicesFile = "/var/mobile/Library/Preferences/com.velk.switch.ringer.plist";

TraceValue text(const std::string& value) { return value; }
TraceValue status(bool isFine, std::uint64_t otherwise) {
    return isFine ? std::uint64_t{0} : otherwise;
}

std::string textOf(const ExpectedCall& call, std::size_t argument) {
    return std::get<std::string>(call.arguments[argument].value());
}

struct YesOrNo {
    bool operator()(std::monostate) const { return false; }
    bool operator()(auto number) const { return number != 0; }
    bool operator()(const std::string& text) const {
        std::size_t place = 0;
        while (place < text.size() && std::isspace(static_cast<unsigned char>(text[place]))) {
            ++place;
        }
        if (place < text.size() && (text[place] == '+' || text[place] == '-')) ++place;
        while (place < text.size() && text[place] == '0') ++place;
        const std::string rest = text.substr(place, 1);
        return !rest.empty() && std::string{"YyTt123456789"}.find(rest) != std::string::npos;
    }
};

struct Volume {
    float operator()(std::monostate) const { return 0; }
    float operator()(auto number) const { return static_cast<float>(number); }
    float operator()(const std::string& text) const { return std::strtof(text.c_str(), nullptr); }
};

bool isYes(const TraceValue& value) { return std::visit(YesOrNo{}, value); }

float volumeOf(const TraceValue& value) { return std::visit(Volume{}, value); }

}  // namespace

void Simulation::begin(std::size_t meddlesAt, std::function<void(Situation&)> outside) {
    trace_.restart();
    meddlesAt_ = meddlesAt;
    outside_ = std::move(outside);
}

Reply Simulation::call(const ExpectedCall& call) {
    const Reply reply = trace_.call(call);
    const Answer right = answer(call);
    const auto expect = [&](const std::optional<TraceValue>& expected, const TraceValue& actual) {
        if (!expected || render(*expected) == render(actual)) return;
        throw Mismatch("call " + std::to_string(trace_.calls()) + ", " + call.operation + ": " +
                       render(actual) + ", where must be " + render(*expected));
    };
    if (call.answers) expect(right.answer, reply.answer);
    if (reply.filledIn) expect(right.filledIn, *reply.filledIn);
    if (trace_.calls() == meddlesAt_) outside_(now_);
    return reply;
}

void Simulation::expectEnd() const {
    if (!trace_.isAtEnd()) {
        throw Mismatch("the trace goes on after call " + std::to_string(trace_.calls()));
    }
}

bool Simulation::turn() { return std::exchange(now_.isPosted, false); }

/// A wait has a turn when it begins, one after each post, and one when its time is over. What is
/// posted during that last one is left for later.
bool Simulation::callsObserver() {
    if (hasWaited_) return false;
    if (turn()) return true;
    now_.time = waitEnds_;
    hasWaited_ = true;
    return turn();
}

Simulation::Answer Simulation::answer(const ExpectedCall& call) {
    const std::string& operation = call.operation;
    if (operation.starts_with("notify_")) return answerService(call);
    if (call.receiver.ends_with("Dictionary")) return answerDictionary(call);
    if (operation == "boolValue") return {isYes(found_)};
    if (operation == "floatValue") return {double{volumeOf(found_)}};
    if (operation.starts_with("numberWith")) return {call.arguments[0]};
    if (operation == "dateWithTimeIntervalSinceNow:") return {now_.time + 0.5};
    if (operation == "runUntilDate:") {
        waitEnds_ = std::get<double>(call.arguments[0].value());
        hasWaited_ = false;
        return {};
    }
    if (operation == "sleepForTimeInterval:") {
        now_.time += 0.25;
        return {};
    }
    return answerHost(call);
}

Simulation::Answer Simulation::answerService(const ExpectedCall& call) {
    const std::string& operation = call.operation;
    if (operation == "notify_post") {
        if (textOf(call, 0) == stateName) now_.isPosted = true;
        return {status(true, 0)};
    }
    if (operation == "notify_register_check") {
        if (now_.registers) return {status(true, 0), {}};
        return {status(false, 1000000), TraceValue{}};
    }
    // Without a token only a cancel is made, of nothing.
    if (operation == "notify_cancel") return {status(now_.registers, 2)};
    if (operation == "notify_check") return {status(true, 0), TraceValue{std::int64_t{1}}};
    if (operation == "notify_get_state") return {status(true, 0), TraceValue{now_.word}};
    now_.word = static_cast<std::uint64_t>(std::get<std::int64_t>(call.arguments[1].value()));
    return {status(true, 0)};
}

Simulation::Answer Simulation::read(const ExpectedCall& call) {
    dictionary_ = textOf(call, 0) == choicesFile ? now_.choices : now_.settings;
    if (dictionary_.kind != Kind::dictionary) return {TraceValue{}};
    return {text("<" + call.receiver + ": " + std::to_string(dictionary_.entries.size()) +
                 " entries>")};
}

Simulation::Answer Simulation::find(const std::string& key) {
    const auto entry = dictionary_.entries.find(key);
    found_ = entry == dictionary_.entries.end() ? TraceValue{} : entry->second;
    return {found_};
}

Simulation::Answer Simulation::write(const std::string& path) {
    if (!now_.hasRoom) return {TraceValue{false}};
    (path == choicesFile ? now_.choices : now_.settings) = dictionary_;
    return {TraceValue{true}};
}

Simulation::Answer Simulation::answerDictionary(const ExpectedCall& call) {
    const std::string& operation = call.operation;
    if (operation.find("WithContentsOfFile:") != std::string::npos) return read(call);
    if (operation == "objectForKey:") return find(textOf(call, 0));
    if (operation == "writeToFile:atomically:") return write(textOf(call, 0));
    if (operation == "init") {
        dictionary_ = {Kind::dictionary, {}};
        return {text("<NSMutableDictionary: 0 entries>")};
    }
    dictionary_.entries[textOf(call, 1)] = call.arguments[0].value();
    return {};
}

Simulation::Answer Simulation::answerHost(const ExpectedCall& call) {
    using Indicator = HostVariant::Indicator;
    using Media = HostVariant::Media;
    const std::string& operation = call.operation;
    const std::string& receiver = call.receiver;
    const bool isIndicator = receiver == "SBRingerHUDController";
    if (operation == "uname") return {std::int64_t{0}, text(now_.machine)};
    if (operation == "strstr") return {textOf(call, 0).find("iPod") != std::string::npos};
    if (operation == "fileExistsAtPath:") return {now_.choices.kind != Kind::absent};
    if (operation == "NSClassFromString") {
        const std::string name = textOf(call, 0);
        const bool isThere = name == "SBMediaController" ? now_.host.media != Media::absent
                                                         : now_.host.indicator != Indicator::absent;
        return {isThere ? text(name) : TraceValue{}};
    }
    if (operation == "respondsToSelector:") {
        return {isIndicator ? now_.host.indicator == Indicator::class_
                            : now_.host.media == Media::instance};
    }
    if (operation == "sharedInstance") {
        const bool isThere = isIndicator ? now_.host.indicator != Indicator::noInstance
                                         : now_.host.media != Media::noInstance;
        return {isThere ? text("<" + receiver + ">") : TraceValue{}};
    }
    if (operation == "setRingerMuted:") {
        const bool keeps = now_.hasRoom && now_.volume;
        if (keeps) now_.isMuted = std::get<bool>(call.arguments[0].value());
        return {};
    }
    if (operation == "getVolume:forCategory:") {
        return {now_.volume.has_value(),
                now_.volume ? TraceValue{double{*now_.volume}} : TraceValue{}};
    }
    if (operation == "setVolumeTo:forCategory:") {
        const bool isSet = now_.hasRoom && now_.volume;
        const double wanted = std::get<double>(call.arguments[0].value());
        if (isSet) now_.volume = static_cast<float>(std::clamp(wanted, 0.0, 1.0));
        return {isSet};
    }
    if (operation == "bundleIdentifier") return {text("com.velk.switch.ringer")};
    return {};
}

}  // namespace quillet::test
