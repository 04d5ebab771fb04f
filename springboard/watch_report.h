// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <map>
#include <ostream>
#include <string>

#include "platform/flipswitch.h"
#include "platform/standin/device/journal_reader.h"

namespace quillet {

/// What somebody who watches a device is told: the state, and what the journal tells of it that can
/// be seen or felt, from whichever process.
class WatchReport {
public:
    /// The journal lies at `path`, and is told from now on.
    WatchReport(const std::filesystem::path& path, bool json, std::ostream& output);

    void begin(FSSwitchState state);
    /// What the journal has new.
    void tellNew();

private:
    void tell(const standin::JournalEntry& entry);
    void tellState(const standin::JournalEntry& refreshed);
    void print(std::int64_t time, const std::string& what) const;
    /// "flip off (springboard[4711])"
    std::string causeOf(const standin::JournalEntry& posted) const;

    standin::JournalReader reader_;
    bool json_;
    std::ostream& output_;
    std::string state_;
    /// What was last seen to post the ringer's name; empty for somebody who keeps no journal.
    std::string cause_;
    /// By process.
    std::map<pid_t, std::string> commands_;
};

}  // namespace quillet
