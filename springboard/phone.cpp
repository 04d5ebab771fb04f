// SPDX-License-Identifier: MIT
#include "springboard/phone.h"

#include <iostream>
#include <system_error>

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
    if (phone.isNew) tellNewPhone(phone.path);
    return root;
}

void tellNewPhone(const fs::path& path) { std::cerr << "New phone in " << path.string() << '\n'; }

Turn takeTurn(const fs::path& root) {
    const fs::path file = standin::DeviceRoot::below(root, turnPath);
    std::error_code ignored;
    fs::create_directories(file.parent_path(), ignored);
    return Turn{file,
                [] { std::cerr << "springboard: waiting for another flip of this device\n"; }};
}

}  // namespace quillet
