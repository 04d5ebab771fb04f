// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

namespace quillet::standin {

/// What a device writes before the plist element, and so do we. Most documents begin with it.
inline constexpr std::string_view xmlProlog =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
    "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n";

/// XML's white space.
inline constexpr std::string_view xmlSpaces = " \t\r\n";

}  // namespace quillet::standin
