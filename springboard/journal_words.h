// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "platform/standin/device/journal_reader.h"
#include "springboard/json.h"

namespace quillet {

/// What a line of the journal tells, in words.
std::string toWords(const standin::JournalEntry& entry);

/// The same as an object: "time", "pid", "program", "event", and what else it tells.
Json toJSON(const standin::JournalEntry& entry);

/// "springboard[4711]"
std::string authorOf(const standin::JournalEntry& entry);

/// "02:15:20.456", in the time zone of whoever reads it.
std::string timeOfDay(std::int64_t microseconds);

/// "2026-11-22", likewise.
std::string dayOf(std::int64_t microseconds);

}  // namespace quillet
