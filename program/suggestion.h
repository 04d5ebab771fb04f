// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quillet {

/// The end of a message about an unknown word: `; did you mean "flip"?` where one of `known` is
/// near enough to `word` to have been meant, or nothing. Near are words that `word` begins, and
/// those that one slip in three letters makes of it: a letter too many, too few, another one, or
/// two neighbours that changed places.
std::string suggestion(std::string_view word, const std::vector<std::string>& known);

}  // namespace quillet
