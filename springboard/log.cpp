// SPDX-License-Identifier: MIT
#include "springboard/log.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <iostream>
#include <limits>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "platform/standin/device/journal_reader.h"
#include "platform/standin/device/root.h"
#include "program/help_text.h"
#include "program/output.h"
#include "program/terminal.h"
#include "program/usage_error.h"
#include "program/wall_clock.h"
#include "springboard/journal_words.h"
#include "springboard/json.h"
#include "springboard/phone.h"
#include "springboard/processes.h"

namespace quillet {

using standin::JournalEntry;

namespace {

/// Prints lines of a journal from a time on.
class Log {
public:
    Log(bool json, std::int64_t since) : json_{json}, since_{since} {}

    void print(const JournalEntry& entry) {
        if (entry.time < since_) return;
        if (json_) {
            std::cout << toLine(toJSON(entry)) << '\n';
            return;
        }
        const std::string day = dayOf(entry.time);
        if (day != day_) std::cout << day << '\n';
        day_ = day;
        std::string author = authorOf(entry);
        authorWidth_ = std::max(authorWidth_, author.size());
        author.resize(authorWidth_, ' ');
        const std::string line = timeOfDay(entry.time) + "  " + author + "  ";
        std::cout << line << wrapped(printable(toWords(entry)), line.size());
    }

private:
    bool json_;
    std::int64_t since_;
    std::string day_;
    /// That the next column begins in one place.
    std::size_t authorWidth_ = 0;
};

/// Puts each process's death behind its last line.
void insertDead(std::vector<JournalEntry>& entries, const std::vector<JournalEntry>& dead) {
    for (const JournalEntry& death : dead) {
        const auto last = std::find_if(entries.rbegin(), entries.rend(), [&](const auto& entry) {
            return entry.process == death.process && entry.number == death.number;
        });
        entries.insert(last.base(), death);
    }
}

}  // namespace

void printLog(const Options& options, const LogChoice& choice) {
    const standin::DeviceRoot root = phoneOf(options);
    standin::JournalReader reader{root.below(standin::DeviceRoot::journalPath)};
    const auto since = choice.last ? timeNow() - *choice.last : std::int64_t{0};
    Processes processes;
    Log log{options.json, since};
    do {
        auto entries = reader.read();
        for (const JournalEntry& entry : entries) processes.take(entry);
        insertDead(entries, processes.takeDead());
        for (const JournalEntry& entry : entries) log.print(entry);
        finishOutput();
        if (!standin::DeviceRoot::isDevice(root.path())) {
            throw std::runtime_error(root.path().string() + ": the device is gone");
        }
        constexpr std::chrono::milliseconds betweenLooks{90};
        if (choice.follows) std::this_thread::sleep_for(betweenLooks);
    } while (choice.follows);
}

std::int64_t duration(std::string_view word) {
    std::int64_t number = 0;
    const auto [end, error] = std::from_chars(word.begin(), word.end(), number);
    const std::string_view unit{end, word.end()};
    const std::int64_t seconds = unit.empty() || unit == "s" ? 1
                                 : unit == "m"               ? 60
                                 : unit == "h"               ? 3600
                                 : unit == "d"               ? 86400
                                                             : 0;
    constexpr auto most = std::numeric_limits<std::int64_t>::max() / microsecondsPerSecond / 86400;
    if (error != std::errc{} || seconds == 0 || number < 0 || number > most) {
        throw UsageError("no duration such as 90s, 5m, 2h or 1d: " + inQuotes(word));
    }
    return number * seconds * microsecondsPerSecond;
}

}  // namespace quillet
