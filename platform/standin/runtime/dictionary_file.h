// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>

#include "platform/standin/plist/value.h"

namespace quillet::standin {

/// What a file of settings may hold, in bytes. A larger one would keep the main thread from all
/// else for seconds.
inline constexpr std::size_t maxSettingsSize = std::size_t{64} << 20U;

// What fails is attempted once more. A fault of the disk or a want of memory may pass, and settings
// that cannot be put back in their file when the switch asks for it are lost.

/// The dictionary in the file at `path`, in either form; nothing when there is none to be read,
/// when the file is larger than maxSettingsSize, or when there is no memory for it.
std::optional<Dictionary> readDictionary(const std::filesystem::path& path);

/// Why readDictionary answers nothing, in a phrase: "line 3, column 7: a key without a value", that
/// the file holds something else, or why it cannot be read. The file is read again for that.
std::string whyNoDictionary(const std::filesystem::path& path);

/// The same of a file's bytes.
std::string whyNoDictionaryIn(const std::string& bytes);

/// Writes `dictionary`, which was read from a file or made anew, in the XML form to the file at
/// `path`; see writeFileAtomically. False when it cannot be written, its text would take too much
/// memory (see rewritePropertyList), or there is none; `path` then holds what it held.
bool writeDictionary(const std::filesystem::path& path, const Value& dictionary);

/// The same in the form that the file at `path` has, and in the XML form when there is none. False
/// too when what is there cannot be read.
bool rewriteDictionary(const std::filesystem::path& path, const Value& dictionary);

}  // namespace quillet::standin
