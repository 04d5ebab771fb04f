// SPDX-License-Identifier: MIT
#include "springboard/journal_words.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <functional>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <string_view>

#include "program/wall_clock.h"

namespace quillet {

using standin::JournalEntry;

namespace {

std::string stateWord(std::string_view number) {
    if (number == "1") return "on";
    return number == "0" ? "off" : std::string{number};
}

/// A name of the notification service; of SpringBoard's the end says enough.
std::string shortName(std::string_view name) {
    constexpr std::string_view common = "com.apple.springboard.";
    return name.starts_with(common) ? std::string{name.substr(common.size())} : std::string{name};
}

std::string textOf(const JournalEntry& entry, std::string_view key) {
    return std::string{entry.find(key)};
}

/// One of SpringBoard's vibration settings: "on", "off", or that it is absent.
std::string settingOf(const JournalEntry& entry, std::string_view key) {
    const std::string_view setting = entry.find(key);
    if (setting == "true") return "on";
    return setting == "false" ? "off" : std::string{setting};
}

std::string vibrationWords(const JournalEntry& entry) {
    return "vibration: ring " + settingOf(entry, "ring") + ", silent " +
           settingOf(entry, "silent") + " (was " + settingOf(entry, "ring-before") + ", " +
           settingOf(entry, "silent-before") + ')';
}

std::string applyingWords(const JournalEntry& entry) {
    const std::string_view state = entry.find("state");
    return state.empty() ? "tap of the switch" : "switch is to be " + stateWord(state);
}

std::string endedWords(const JournalEntry& entry) {
    const std::string_view signal = entry.find("signal");
    return signal.empty() ? "ended" : "ended by signal " + std::string{signal};
}

using Phrase = std::function<std::string(const JournalEntry&)>;

/// What each event is in words.
const std::map<std::string_view, Phrase>& phrases() {
    static const std::map<std::string_view, Phrase> all = {
        {"started", [](auto& entry) { return "started: " + textOf(entry, "command"); }},
        {"ended", endedWords},
        {"died", [](auto&) { return std::string{"died"}; }},
        {"made", [](auto&) { return std::string{"new phone"}; }},
        {"erased", [](auto&) { return std::string{"phone made new again"}; }},
        {"changed", [](auto& entry) { return "changed: " + textOf(entry, "command"); }},
        {"applying", applyingWords},
        {"applied", [](auto& entry) { return "switch is " + stateWord(entry.find("state")); }},
        {"word-set",
         [](auto& entry) {
             return "word of " + shortName(entry.find("name")) + ": " + textOf(entry, "word");
         }},
        {"posted", [](auto& entry) { return "posted " + shortName(entry.find("name")); }},
        {"indicator",
         [](auto& entry) { return "indicator shows " + stateWord(entry.find("state")); }},
        {"muted",
         [](auto& entry) {
             return std::string{entry.find("muted") == "1" ? "ringer muted" : "ringer unmuted"};
         }},
        {"volume",
         [](auto& entry) {
             return "volume of " + textOf(entry, "category") + ": " + textOf(entry, "volume");
         }},
        {"vibration-settings", vibrationWords},
        {"buzz", [](auto&) { return std::string{"buzz"}; }},
        {"refresh-asked", [](auto&) { return std::string{"panel asks for the state"}; }},
        {"refreshed", [](auto& entry) { return "panel shows " + stateWord(entry.find("state")); }},
    };
    return all;
}

/// A detail as JSON: a flag, a number, or text.
Json valueOf(const std::string& key, const std::string& text) {
    if (key == "muted") return text == "1";
    if (text == "true" || text == "false") return text == "true";
    static constexpr auto numbers =
        std::to_array<std::string_view>({"state", "word", "volume", "sound", "signal"});
    const bool isNumber = std::ranges::find(numbers, key) != numbers.end();
    std::uint64_t whole = 0;
    double real = 0;
    if (isNumber && std::from_chars(text.data(), text.data() + text.size(), whole).ptr ==
                        text.data() + text.size()) {
        return whole;
    }
    const char* const end = text.data() + text.size();
    if (isNumber && std::from_chars(text.data(), end, real).ptr == end) return real;
    return text;
}

}  // namespace

std::string toWords(const JournalEntry& entry) {
    const auto found = phrases().find(entry.event);
    if (found != phrases().end()) return found->second(entry);
    std::string text = entry.event;
    for (const auto& [key, value] : entry.details)
        text.append(" ").append(key).append("=").append(value);
    return text;
}

Json toJSON(const JournalEntry& entry) {
    Json object = {{"time", isoTime(entry.time)},
                   {"pid", entry.process},
                   {"program", entry.program},
                   {"event", entry.event}};
    for (const auto& [key, value] : entry.details) {
        if (key != "birth") object[key] = valueOf(key, value);
    }
    return object;
}

std::string authorOf(const JournalEntry& entry) {
    return entry.program + '[' + std::to_string(entry.process) + ']';
}

}  // namespace quillet
