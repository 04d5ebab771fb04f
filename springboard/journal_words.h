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

}  // namespace quillet
