// SPDX-License-Identifier: MIT
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/standin/files/descriptor.h"

namespace quillet::standin {

/// A line of a journal.
struct JournalEntry {
    /// Microseconds since 1970-01-01T00:00:00Z, by the clock that people read.
    std::int64_t time = 0;
    pid_t process = 0;
    /// Counts the lines of the process.
    std::uint64_t number = 0;
    std::string program;
    std::string event;
    /// What is told of the event, by keys, in its order.
    std::vector<std::pair<std::string, std::string>> details = {};

    /// Empty when nothing is told under that key.
    std::string_view find(std::string_view key) const;
    bool operator==(const JournalEntry&) const = default;
};

/// Nothing for what is no whole line.
std::optional<JournalEntry> parseJournalLine(std::string_view line);

/// Reads a device's journal, from its oldest line on, and what is added to it.
class JournalReader {
public:
    explicit JournalReader(std::filesystem::path path);

    /// The lines since the last call, each once. None when there is no journal, or it cannot be
    /// read.
    std::vector<JournalEntry> read();

private:
    /// Whether nothing was added since the last call, for one call of the system's: somebody who
    /// follows the journal looks many times a second, and nearly always in vain.
    bool isAtEnd() const;
    /// Reads the open file to its end.
    void readFile(std::vector<JournalEntry>& entries);
    /// Whether it is a whole line; each line becomes an entry once.
    bool take(std::string_view line, std::vector<JournalEntry>& entries);
    /// Reads the rest of the open file and opens the one that follows it. False when there is none.
    bool openNext(std::vector<JournalEntry>& entries);

    std::filesystem::path path_;
    std::optional<Descriptor> file_;
    /// How many bytes of it have been read.
    off_t read_ = 0;
    bool hasBegun_ = false;
    /// What is not whole yet.
    std::string rest_;
    /// The last line of each process: it may be there twice.
    std::map<pid_t, std::pair<std::uint64_t, std::int64_t>> last_;
};

}  // namespace quillet::standin
