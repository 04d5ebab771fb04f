// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <optional>

#include "platform/standin/plist/value.h"

namespace quillet::standin {

/// The dictionary in the file at `path`, in either form; nothing when there is none to be read.
std::optional<Dictionary> readDictionary(const std::filesystem::path& path);

}  // namespace quillet::standin
