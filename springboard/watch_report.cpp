// SPDX-License-Identifier: MIT
#include "springboard/watch_report.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <nlohmann/json.hpp>
#include <utility>

#include "platform/standin/device/root.h"
#include "program/help_text.h"
#include "program/terminal.h"
#include "program/wall_clock.h"
#include "springboard/journal_words.h"
#include "springboard/json.h"

namespace quillet {

using standin::JournalEntry;

namespace {

constexpr auto seenOrFelt =
    std::to_array<std::string_view>({"indicator", "muted", "volume", "buzz", "changed"});

bool isSeenOrFelt(const JournalEntry& entry) {
    return std::find(seenOrFelt.begin(), seenOrFelt.end(), entry.event) != seenOrFelt.end();
}

}  // namespace

WatchReport::WatchReport(const std::filesystem::path& path, bool json, std::ostream& output)
    : reader_{path}, json_{json}, output_{output} {
    for (const JournalEntry& entry : reader_.read()) {
        if (entry.event == "started") commands_[entry.process] = entry.find("command");
    }
}

void WatchReport::begin(FSSwitchState state) {
    state_ = state == FSSwitchStateOn ? "on" : "off";
    if (json_) {
        output_ << toLine({{"time", isoTime(timeNow())},
                           {"pid", getpid()},
                           {"program", "springboard"},
                           {"event", "state"},
                           {"state", state_}})
                << std::endl;
    } else {
        print(timeNow(), "as it is now");
    }
}

void WatchReport::tellNew() {
    for (const JournalEntry& entry : reader_.read()) tell(entry);
}

void WatchReport::tell(const JournalEntry& entry) {
    const bool isOwn = entry.process == getpid();
    if (entry.event == "started") commands_[entry.process] = entry.find("command");
    const bool isRinger = entry.find("name") == standin::DeviceRoot::ringerStateName;
    if (entry.event == "word-set" && isRinger) state_ = entry.find("word") == "1" ? "on" : "off";
    if (entry.event == "posted" && isRinger) {
        cause_ = causeOf(entry);
    }
    if (isOwn && entry.event == "refreshed") tellState(entry);
    if (isOwn || !isSeenOrFelt(entry)) return;
    if (json_) {
        output_ << toLine(toJSON(entry)) << std::endl;
    } else {
        print(entry.time, toWords(entry));
    }
}

void WatchReport::tellState(const JournalEntry& refreshed) {
    state_ = refreshed.find("state") == "1" ? "on" : "off";
    const std::string cause = std::exchange(cause_, "");
    if (json_) {
        Json object = toJSON(refreshed);
        object["event"] = "state";
        object["state"] = state_;
        object["cause"] = cause.empty() ? Json(nullptr) : Json(cause);
        output_ << toLine(object) << std::endl;
    } else {
        print(refreshed.time, cause.empty() ? "posted by somebody unknown" : cause);
    }
}

void WatchReport::print(std::int64_t time, const std::string& what) const {
    const std::string line = timeOfDay(time) + "  " + state_ + (state_ == "on" ? "   " : "  ");
    output_ << line << wrapped(printable(what), line.size()) << std::flush;
}

std::string WatchReport::causeOf(const JournalEntry& posted) const {
    const auto command = commands_.find(posted.process);
    const std::string author = authorOf(posted);
    return command == commands_.end() ? author : command->second + " (" + author + ')';
}

}  // namespace quillet
