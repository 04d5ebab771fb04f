// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace quillet::standin {

/// The bytes of the regular file at `path`; nothing when there is none or it cannot be read.
std::optional<std::string> readFile(const std::filesystem::path& path);

/// Puts `bytes` in place of what is at `path`, by way of a temporary file beside it; the mode of a
/// file that was there is kept. False when that fails; `path` then holds what it held, and no
/// temporary file is left.
bool writeFileAtomically(const std::filesystem::path& path, std::string_view bytes);

}  // namespace quillet::standin
