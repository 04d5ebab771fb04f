// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <filesystem>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

namespace quillet::standin {

/// False when nothing is at `path`, or a link that leads to nothing. What cannot be looked at may
/// be there: nobody is to take it for absent and put something in its place.
bool mayExist(const std::filesystem::path& path);

/// The bytes of the regular file at `path`; nothing when there is none, it cannot be read or it has
/// more than `maxSize` bytes.
std::optional<std::string> readFile(const std::filesystem::path& path,
                                    std::size_t maxSize = std::numeric_limits<std::size_t>::max());

/// Why the file at `path` cannot be read, in the system's words, or that it is no file; `otherwise`
/// when it can be.
std::string faultOf(const std::filesystem::path& path, const std::string& otherwise);

/// Puts `bytes` in place of the regular file at `path`, by way of a draft beside it. A link at
/// `path` is followed and stays. A file that was there hands on its owner, group and mode, as far
/// as this process may give them; a new one has what the process's umask leaves of 0666. The bytes
/// are on the disk before the old ones may go. False when that fails, when something else than a
/// file is there, or when what is there cannot be looked at; `path` then holds what it held.
bool writeFileAtomically(const std::filesystem::path& path, std::string_view bytes);

}  // namespace quillet::standin
