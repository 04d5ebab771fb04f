// SPDX-License-Identifier: MIT
#pragma once

#include <optional>

#include "platform/standin/plist/value.h"

namespace quillet::standin {

/// The value's reading as a flag; nothing for kinds that have none. See Object::boolValue.
std::optional<bool> boolValue(const Value& value);

/// The value's reading as a number; nothing for kinds that have none. See Object::floatValue.
std::optional<float> floatValue(const Value& value);

}  // namespace quillet::standin
