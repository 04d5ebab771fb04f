// SPDX-License-Identifier: MIT
#pragma once

#include <iosfwd>

#include "platform/standin/plist/value.h"

namespace quillet::standin {

// How GoogleTest prints what a failing test compares: as an XML property list.
void PrintTo(const Value& value, std::ostream* out);
void PrintTo(const Dictionary& dictionary, std::ostream* out);

}  // namespace quillet::standin
