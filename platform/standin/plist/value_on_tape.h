// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <vector>

#include "platform/standin/plist/tape.h"
#include "platform/standin/plist/value.h"

namespace quillet::standin {

/// The value at `node` of the tape, which containers then share.
Value valueAt(const std::shared_ptr<Tape>& tape, const Node& node);

/// The container that a value is; null when it is none.
const Container* containerIn(const Value& value);

/// Copies `value` to the end of `to`, which are nodes for `tape`.
void append(Tape& tape, std::vector<Node>& to, const Value& value);

}  // namespace quillet::standin
