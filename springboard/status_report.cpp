// SPDX-License-Identifier: MIT
#include "springboard/status_report.h"

#include <unistd.h>

#include <iomanip>
#include <iostream>
#include <nlohmann/json.hpp>
#include <string_view>

#include "program/help_text.h"
#include "program/output.h"
#include "program/terminal.h"
#include "program/wall_clock.h"
#include "springboard/journal_words.h"
#include "springboard/json.h"

namespace quillet {

namespace {

bool isIPod(const Status& status) { return status.facts.machine.find("iPod") != std::string::npos; }

/// A flag as JSON: null for one that is absent.
Json flagOf(std::string_view word) {
    if (word == "absent") return nullptr;
    return word == "odd" ? Json(word) : Json(word == "true");
}

template <class Value>
Json orNull(const std::optional<Value>& value) {
    return value ? Json(*value) : Json(nullptr);
}

Json watchersOf(const Status& status) {
    Json watchers = Json::array();
    for (const User& user : status.watchers) {
        watchers.push_back(
            {{"pid", user.process}, {"program", user.program}, {"command", user.command}});
    }
    return watchers;
}

Json leftOffOf(const Status& status) {
    if (!status.leftOff) return nullptr;
    return {{"ring-vibrate", flagOf(status.leftOff->ring)},
            {"silent-vibrate", flagOf(status.leftOff->silent)},
            {"time", isoTime(status.leftOff->flip.time)},
            {"pid", status.leftOff->flip.process}};
}

Json toJSON(const Status& status) {
    const Choices& choices = status.phone.choices;
    Json object = {{"time", isoTime(timeNow())}, {"pid", getpid()},
                   {"program", "springboard"},   {"event", "status"},
                   {"root", status.root},        {"model", status.facts.machine}};
    object["host"] = textOf(status.facts.host);
    object["state"] = status.word == 1U ? "on" : "off";
    object["word"] = orNull(status.word);
    object["muted"] = orNull(status.phone.isMuted);
    object["volume"] = orNull(status.phone.volume);
    object["preferences"] = {{"ios-vibrate-pattern", flagOf(choices.pattern)},
                             {"vibrate-when-off", flagOf(choices.whenOff)},
                             {"vibrate-when-on", flagOf(choices.whenOn)},
                             {"ringtone-volume", orNull(choices.volume)}};
    object["effect"] = effectOf(choices, isIPod(status));
    object["ring-vibrate"] = flagOf(status.phone.vibration.ring);
    object["silent-vibrate"] = flagOf(status.phone.vibration.silent);
    object["watchers"] = watchersOf(status);
    object["flipping"] = status.isFlipping;
    object["left-off"] = leftOffOf(status);
    return object;
}

constexpr int nameWidth = 13;

void line(const char* name, const std::string& text) {
    std::cout << std::left << std::setw(nameWidth) << name << text << '\n';
}

/// A line of words, which may become several.
void lines(const char* name, const std::string& words) {
    std::cout << std::left << std::setw(nameWidth) << name << wrapped(words, nameWidth);
}

std::string wordText(const std::optional<std::uint64_t>& word) {
    if (!word) return "off: the service does not have its name";
    if (*word == 1) return "on: sounds play (its word is 1)";
    return "off: silent (its word is " + std::to_string(*word) + ')';
}

std::string mutedText(const std::optional<bool>& isMuted) {
    return !isMuted ? "unknown" : *isMuted ? "muted" : "not muted";
}

std::string numberText(const std::optional<float>& number) {
    return number ? toLine(Json(*number)) : "unknown";
}

std::string settingText(std::string_view word) {
    return word == "absent" ? "absent, counts as true" : std::string{word};
}

void printChoices(const Status& status) {
    const Choices& choices = status.phone.choices;
    lines("Preferences", effectOf(choices, isIPod(status)));
    line("", std::string{"ios-vibrate-pattern "} + choices.pattern);
    line("", std::string{"vibrate-when-off "} + choices.whenOff);
    line("", std::string{"vibrate-when-on "} + choices.whenOn);
    line("", "ringtone-volume " + (choices.volume ? numberText(choices.volume) : "absent"));
}

void printWatchers(const Status& status) {
    const char* name = "Watched by";
    if (status.watchers.empty()) line(name, "nobody");
    for (const User& user : status.watchers) {
        const std::string command = user.command.empty() ? "" : ", " + printable(user.command);
        lines(name, user.program + '[' + std::to_string(user.process) + ']' + command);
        name = "";
    }
}

void printLeftOff(const Status& status) {
    if (status.isFlipping) line("Under way", "a flip; SpringBoard's settings may be off for it");
    if (!status.leftOff) return;
    const LeftOff& left = *status.leftOff;
    line("Left off", "SpringBoard's settings, by a flip that did not end:");
    line("", authorOf(left.flip) + ", " + dayOf(left.flip.time) + ' ' + timeOfDay(left.flip.time));
    line("", "they were: ring-vibrate " + left.ring + ", silent-vibrate " + left.silent);
}

void printWords(const Status& status) {
    line("Phone", status.root);
    line("Model", status.facts.machine);
    line("Host", textOf(status.facts.host));
    line("Ringer", wordText(status.word));
    line("", mutedText(status.phone.isMuted) + ", volume " + numberText(status.phone.volume));
    printChoices(status);
    line("SpringBoard", "ring-vibrate " + settingText(status.phone.vibration.ring));
    line("", "silent-vibrate " + settingText(status.phone.vibration.silent));
    printWatchers(status);
    printLeftOff(status);
}

}  // namespace

void report(const Status& status, bool json) {
    if (json) {
        std::cout << toLine(toJSON(status)) << '\n';
    } else {
        printWords(status);
    }
    finishOutput();
}

}  // namespace quillet
