// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "platform/standin/device/device_facts.h"
#include "platform/standin/plist/value.h"

namespace quillet::standin {

/// A property list that a new phone holds for those who run on it.
struct NewFile {
    /// Of the device, absolute.
    std::string path;
    Dictionary content;
};

/// Where a phone lies, and whether it was made for this.
struct FoundPhone {
    std::filesystem::path path;
    bool isNew = false;
};

/// Makes the folder at `root` a phone as it comes out of its box, its ringer on, with `files`
/// beside what every phone has, if there is no such folder or it is empty; any other is left as it
/// is. Of several processes that do so at once each finds a complete phone, and one has made it.
/// Throws std::runtime_error when it cannot be made; nothing is left of it then. The answer's path
/// is to be used from now on: a relative `root` may not be followed afterwards, when it is the
/// working folder and was replaced.
FoundPhone makeNewPhone(const std::filesystem::path& root, const std::vector<NewFile>& files,
                        const DeviceFacts& facts = {});

/// Puts such a new phone in the place of the device at `root`, whatever that holds, in one step: a
/// process that is killed leaves the one or the other. Those who use the device meanwhile go on
/// with what they have open. Throws std::runtime_error, and the device is as it was, when it cannot
/// be done or when no device is there.
void eraseDevice(const std::filesystem::path& root, const std::vector<NewFile>& files,
                 const DeviceFacts& facts);

}  // namespace quillet::standin
