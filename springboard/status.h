// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/standin/device/device_facts.h"
#include "platform/standin/device/journal_reader.h"
#include "springboard/options.h"
#include "springboard/phone_now.h"

namespace quillet {

/// Settings that a flip which never ended has left off.
struct LeftOff {
    /// Of SpringBoard, before that.
    std::string ring;
    std::string silent;
    /// The flip's first line about them.
    standin::JournalEntry flip;
};

/// Who has the device open.
struct User {
    int process = 0;
    std::string program;
    /// Empty when it tells nothing of that.
    std::string command = {};
};

/// How a device stands.
struct Status {
    std::string root;
    standin::DeviceFacts facts;
    /// Nothing when the service does not have the name.
    std::optional<std::uint64_t> word;
    PhoneNow phone;
    std::vector<User> watchers;
    bool isFlipping = false;
    std::optional<LeftOff> leftOff;
};

/// Prints how the device stands. Throws std::runtime_error when there is none, and AlreadySaid when
/// part of it could not be read.
void printStatus(const Options& options);

/// What a flip left off that `entries` do not tell the putting back of. Nothing when there is none.
std::optional<LeftOff> leftOffIn(const std::vector<standin::JournalEntry>& entries);

/// What the choices come to: "buzzes when muted, not when unmuted; a flip takes 1.0 s".
std::string effectOf(const Choices& choices, bool isIPod);

}  // namespace quillet
