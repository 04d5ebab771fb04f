// SPDX-License-Identifier: MIT
#include "springboard/processes.h"

#include <unistd.h>

#include <charconv>
#include <fstream>
#include <optional>
#include <system_error>

#include "platform/standin/device/process_birth.h"

namespace quillet {

namespace fs = std::filesystem;
using standin::JournalEntry;

namespace {

std::optional<pid_t> numberIn(const std::string& name) {
    pid_t number = 0;
    const char* const end = name.data() + name.size();
    const bool isNumber = std::from_chars(name.data(), end, number).ptr == end;
    return isNumber ? std::optional{number} : std::nullopt;
}

/// Whether one of the files of a process, which are links in that folder, is at `path`.
bool hasOpen(const fs::path& files, const fs::path& path) {
    std::error_code error;
    for (fs::directory_iterator file{files, error}, end; !error && file != end;
         file.increment(error)) {
        std::error_code ignored;
        if (fs::read_symlink(file->path(), ignored) == path) return true;
    }
    return false;
}

}  // namespace

void Processes::take(const JournalEntry& entry) {
    if (entry.event == "ended") {
        all_.erase(entry.process);
    } else if (entry.event == "started") {
        all_[entry.process] = {std::string{entry.find("command")}, std::string{entry.find("birth")},
                               entry};
    } else if (const auto known = all_.find(entry.process); known != all_.end()) {
        known->second.last = entry;
    }
}

std::vector<JournalEntry> Processes::takeDead() {
    std::vector<JournalEntry> dead;
    for (auto process = all_.begin(); process != all_.end();) {
        if (standin::birthOf(process->first) == process->second.birth) {
            ++process;
            continue;
        }
        JournalEntry last = process->second.last;
        last.event = "died";
        last.details.clear();
        dead.push_back(std::move(last));
        process = all_.erase(process);
    }
    return dead;
}

std::string Processes::commandOf(pid_t process) const {
    const auto known = all_.find(process);
    return known == all_.end() ? "" : known->second.command;
}

std::map<pid_t, std::string> usersOf(const fs::path& path) {
    std::map<pid_t, std::string> users;
    std::error_code error;
    for (fs::directory_iterator process{"/proc", error}, end; !error && process != end;
         process.increment(error)) {
        const auto number = numberIn(process->path().filename());
        if (!number || *number == getpid() || !hasOpen(process->path() / "fd", path)) continue;
        std::getline(std::ifstream{process->path() / "comm"}, users[*number]);
    }
    return users;
}

}  // namespace quillet
