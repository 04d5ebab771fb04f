// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "platform/standin/device/journal_reader.h"

namespace quillet {

/// Who of those that a journal tells of has begun and not ended.
class Processes {
public:
    /// The next line of the journal.
    void take(const standin::JournalEntry& entry);

    /// Those that are gone, each once: its last line, with the event "died".
    std::vector<standin::JournalEntry> takeDead();

    /// What the process does here, as it told when it began; empty when it has told nothing.
    std::string commandOf(pid_t process) const;

private:
    struct Process {
        std::string command;
        std::string birth;
        standin::JournalEntry last;
    };

    std::map<pid_t, Process> all_;
};

/// Processes that have the file at `path` open, but for this one, by number with their names. What
/// the system does not show is left out.
std::map<pid_t, std::string> usersOf(const std::filesystem::path& path);

}  // namespace quillet
