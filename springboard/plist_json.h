// SPDX-License-Identifier: MIT
#pragma once

#include "platform/standin/plist/value.h"
#include "springboard/json.h"

namespace quillet {

/// A property list's value as JSON. Data is a string in base64, a date one as the XML form has it,
/// and an archive's identifier {"CF$UID": number}.
Json toJSON(const standin::Value& value);

}  // namespace quillet
