// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "platform/standin/plist/tape.h"

namespace quillet::standin {

/// The value at `root` in the binary form, as small as that allows: each object once, numbers in no
/// more bytes than they need. Nothing when that would take more than `limit` bytes of memory, the
/// file's own included, which is known before they are taken.
std::optional<std::string> writeBinary(const Node& root, std::size_t limit);

}  // namespace quillet::standin
