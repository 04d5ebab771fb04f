// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>

#include "platform/standin/plist/value.h"

namespace quillet::standin {

/// What a file of settings may hold, in bytes. A larger one would keep the main thread from all
/// else for seconds.
inline constexpr std::size_t maxSettingsSize = std::size_t{64} << 20U;

/// The dictionary in the file at `path`, in either form; nothing when there is none to be read, or
/// when the file is larger than maxSettingsSize.
std::optional<Dictionary> readDictionary(const std::filesystem::path& path);

}  // namespace quillet::standin
