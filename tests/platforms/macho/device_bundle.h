// SPDX-License-Identifier: MIT
#pragma once

#include <cstdlib>
#include <filesystem>

namespace quillet::test {

/// The bundle whose machine code is tested: this build's, or what $QUILLET_MACHO_BUNDLE names.
inline std::filesystem::path deviceBundle() {
    const char* const given = std::getenv("QUILLET_MACHO_BUNDLE");
    return given == nullptr ? QUILLET_MACHO_BUNDLE : given;
}

}  // namespace quillet::test
