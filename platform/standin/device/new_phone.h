// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "platform/standin/plist/value.h"

namespace quillet::standin {

/// A property list that a new phone holds for those who run on it.
struct NewFile {
    /// Of the device, absolute.
    std::string path;
    Dictionary content;
};

/// Makes the folder at `root` a phone as it comes out of its box, its ringer on, with `files`
/// beside what every phone has, if there is no such folder or it is empty; any other is left as it
/// is. Of several processes that do so at once each finds a complete phone. Throws
/// std::runtime_error when it cannot be made; nothing is left of it then. The answer is where the
/// phone lies: a relative `root` may not be followed afterwards, when it is the working folder and
/// was replaced.
std::filesystem::path makeNewPhone(const std::filesystem::path& root,
                                   const std::vector<NewFile>& files);

}  // namespace quillet::standin
