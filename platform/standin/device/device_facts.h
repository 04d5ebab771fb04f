// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <string>

#include "platform/standin/device/host_variant.h"
#include "platform/standin/plist/value.h"

namespace quillet::standin {

/// What a device is, from its making on until somebody makes it something else. It is kept in a
/// property list of the root.
struct DeviceFacts {
    /// The model, as uname tells it: 1 to 255 bytes.
    std::string machine = "iPhone6,1";
    /// What its SpringBoard is like.
    HostVariant host = {};

    bool operator==(const DeviceFacts&) const = default;
};

Dictionary toDictionary(const DeviceFacts& facts);

/// The facts in the file at `path`. What it does not tell is as by default, all of it when there is
/// no file. Throws std::runtime_error when the file cannot be read or tells something that no
/// device is.
DeviceFacts readFacts(const std::filesystem::path& path);

/// Puts `facts` in place of what the file at `path` tells; whatever else it holds goes. Throws
/// std::runtime_error when it cannot be written, and it is as it was.
void writeFacts(const std::filesystem::path& path, const DeviceFacts& facts);

}  // namespace quillet::standin
