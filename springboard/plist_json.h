// SPDX-License-Identifier: MIT
#pragma once

#include "platform/standin/plist/value.h"
#include "springboard/json.h"

namespace quillet {

/// A property list's value as JSON, with what JSON lacks as inJSON has it.
Json toJSON(const standin::Value& value);

}  // namespace quillet
