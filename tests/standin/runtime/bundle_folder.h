// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <fstream>
#include <string>

#include "platform/standin/plist/property_list.h"

namespace quillet::test {

inline void writeBytes(const std::filesystem::path& file, const std::string& bytes) {
    std::filesystem::create_directories(file.parent_path());
    std::ofstream{file, std::ios::binary} << bytes;
}

/// Makes a bundle folder with this property list, which replaces that of an earlier one.
inline void writeInfo(const std::filesystem::path& folder, const standin::Dictionary& info) {
    writeBytes(folder / "Info.plist", standin::writePropertyList(info));
}

}  // namespace quillet::test
