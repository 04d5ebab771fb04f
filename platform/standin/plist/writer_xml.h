// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "platform/standin/plist/tape.h"

namespace quillet::standin {

/// The value at `root` in the XML form; nothing when its text would take more than `limit` bytes of
/// memory, which is known before they are taken.
std::optional<std::string> writeXML(const Node& root, std::size_t limit);

}  // namespace quillet::standin
