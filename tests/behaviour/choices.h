// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <optional>

namespace quillet::test {

/// What a flag may be in a preferences file.
inline constexpr std::array<std::optional<bool>, 3> trueFalseOrAbsent = {true, false, std::nullopt};

}  // namespace quillet::test
