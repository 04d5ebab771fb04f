// SPDX-License-Identifier: MIT
#include "springboard/phone.h"

#include <system_error>

#include "platform/standin/device/complaints.h"
#include "platform/standin/device/journal.h"
#include "springboard/messages.h"
#include "springboard/preferences.h"

namespace quillet {

namespace fs = std::filesystem;

namespace {

/// Of the device: what gives hosts their turns.
constexpr char turnPath[] = "/var/run/springboard.lock";

}  // namespace

std::vector<standin::NewFile> newFiles() {
    // The user's choices: the vibration is the switch's, when it mutes.
    return {
        {preferencesPath,
         {{"ios-vibrate-pattern", false}, {"vibrate-when-off", true}, {"vibrate-when-on", false}}}};
}

standin::DeviceFacts factsOf(const Options& options) {
    standin::DeviceFacts facts;
    if (options.machine) facts.machine = *options.machine;
    if (options.host) facts.host = *options.host;
    return facts;
}

standin::DeviceRoot phoneOf(const Options& options) {
    const auto phone = standin::makeNewPhone(rootOf(options), newFiles(), factsOf(options));
    const standin::DeviceRoot root{phone.path};
    if (phone.isNew) tellNewPhone(options, phone.path);
    if (phone.isNew) tellJournal(options, phone.path, "made");
    return root;
}

void tellNewPhone(const Options& options, const fs::path& path) {
    sayNote(options.json, "New phone in " + path.string());
}

Turn takeTurn(const Options& options, const fs::path& root) {
    const fs::path file = standin::DeviceRoot::below(root, turnPath);
    std::error_code ignored;
    fs::create_directories(file.parent_path(), ignored);
    return Turn{file, [&] { sayError(options.json, "waiting for another flip of this device"); }};
}

bool isTurnTaken(const fs::path& root) {
    return Turn::isTaken(standin::DeviceRoot::below(root, turnPath));
}

void tellJournal(const Options& options, const fs::path& root, const char* event) {
    standin::Complaints complaints{[&](const std::string& text) { sayError(options.json, text); }};
    standin::Journal journal{{"springboard", options.command},
                             standin::DeviceRoot::below(root, standin::DeviceRoot::journalPath),
                             complaints};
    journal.add(event, standin::Told{"command", options.command});
    if (!complaints.isEmpty()) throw AlreadySaid{};
}

}  // namespace quillet
