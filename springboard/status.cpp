// SPDX-License-Identifier: MIT
#include "springboard/status.h"

#include <string_view>

#include "platform/standin/device/complaints.h"
#include "platform/standin/device/hardware.h"
#include "platform/standin/device/root.h"
#include "platform/standin/notifications/notification_table.h"
#include "springboard/messages.h"
#include "springboard/phone.h"
#include "springboard/processes.h"
#include "springboard/status_report.h"

namespace quillet {

using standin::DeviceRoot;
using standin::JournalEntry;

namespace {

/// Those who have the device open for longer than a flip takes.
std::vector<User> watchersOf(const DeviceRoot& root, const Processes& processes) {
    std::vector<User> watchers;
    for (const auto& [process, name] : usersOf(root.below(DeviceRoot::notificationsPath))) {
        const std::string command = processes.commandOf(process);
        const bool isFlip = name == "springboard" && !command.starts_with("watch");
        if (isFlip && !command.empty()) continue;
        watchers.push_back({process, name, command});
    }
    return watchers;
}

PhoneNow readPhone(const DeviceRoot& root, standin::Complaints& complaints) {
    const standin::Hardware hardware{root.below(DeviceRoot::hardwarePath), &complaints};
    PhoneNow phone = lookAt(root, hardware, complaints);
    if (!complaints.isEmpty()) phone.isMuted.reset();
    return phone;
}

void readJournal(Status& status, const DeviceRoot& root) {
    const auto entries = standin::JournalReader{root.below(DeviceRoot::journalPath)}.read();
    Processes processes;
    for (const JournalEntry& entry : entries) processes.take(entry);
    status.watchers = watchersOf(root, processes);
    const std::string_view off = "false";
    const bool areOff = status.phone.vibration.ring == off && status.phone.vibration.silent == off;
    if (areOff && !status.isFlipping) status.leftOff = leftOffIn(entries);
}

}  // namespace

std::optional<LeftOff> leftOffIn(const std::vector<JournalEntry>& entries) {
    std::optional<LeftOff> leftOff;
    for (const JournalEntry& entry : entries) {
        if (entry.event == "erased") leftOff.reset();
        if (entry.event != "vibration-settings") continue;
        const auto areOff = [&](const char* ring, const char* silent) {
            return entry.find(ring) == "false" && entry.find(silent) == "false";
        };
        if (!areOff("ring", "silent")) {
            leftOff.reset();
        } else if (!areOff("ring-before", "silent-before")) {
            leftOff = {std::string{entry.find("ring-before")},
                       std::string{entry.find("silent-before")}, entry};
        }
    }
    return leftOff;
}

std::string effectOf(const Choices& choices, bool isIPod) {
    const auto is = [](const char* word, std::string_view what) { return word == what; };
    if (is(choices.pattern, "odd")) return "a flip ends SpringBoard: the first is no flag";
    if (!is(choices.pattern, "false")) {
        const std::string effect = "vibration is left to the system; a flip takes no time";
        return isIPod ? effect + ", 0.25 s when unmuted" : effect;
    }
    if (is(choices.whenOff, "odd") || is(choices.whenOn, "odd")) {
        return "a flip ends SpringBoard: one is no flag";
    }
    const bool whenOff = !is(choices.whenOff, "false") || is(choices.whenOn, "absent");
    const bool whenOn = is(choices.whenOn, "true");
    const std::string buzz = whenOff && whenOn ? "buzzes when muted and when unmuted"
                             : whenOff         ? "buzzes when muted, not when unmuted"
                             : whenOn          ? "buzzes when unmuted, not when muted"
                                               : "never buzzes";
    return buzz + "; a flip takes 1.0 s" + (isIPod ? ", 0.25 s more when unmuted" : "");
}

void printStatus(const Options& options) {
    standin::Complaints complaints{[&](const std::string& text) { sayError(options.json, text); }};
    const DeviceRoot root = phoneOf(options);
    Status status;
    status.root = root.path();
    status.facts = standin::readFacts(root.below(DeviceRoot::factsPath));
    standin::NotificationTable table{root.below(DeviceRoot::notificationsPath)};
    const auto* const word = table.find(DeviceRoot::ringerStateName);
    if (word != nullptr) status.word = word->state.load();
    // Asked before the settings are: a flip that ends in between has put them back.
    status.isFlipping = isTurnTaken(root.path());
    status.phone = readPhone(root, complaints);
    readJournal(status, root);
    report(status, options.json);
    if (!complaints.isEmpty()) throw AlreadySaid{};
}

}  // namespace quillet
