// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string_view>

#include "platform/standin/plist/value.h"

namespace quillet {

/// The value in `value` that `path` leads to: keys of dictionaries and numbers of elements, from 0,
/// with dots between them. Of the keys that may be meant where a key holds dots itself, the longest
/// one that is there is. Nothing when the path leads nowhere.
std::optional<standin::Value> valueAt(standin::Value value, std::string_view path);

}  // namespace quillet
