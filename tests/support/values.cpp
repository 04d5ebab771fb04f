// SPDX-License-Identifier: MIT
#include "tests/support/values.h"

#include <ostream>
#include <string>

#include "platform/standin/plist/property_list.h"

namespace quillet::standin {

void PrintTo(const Value& value, std::ostream* out) {
    const std::string text = writePropertyList(value);
    *out << text.substr(text.find("<plist"));
}

void PrintTo(const Dictionary& dictionary, std::ostream* out) { PrintTo(Value{dictionary}, out); }

}  // namespace quillet::standin
