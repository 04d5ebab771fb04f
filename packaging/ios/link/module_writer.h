// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "packaging/ios/link/stub_library.h"

namespace quillet::linker {

/// Links one object of ARM code into a bundle for armv7 devices from iOS 7.0 on: the bytes of its
/// file. `exports` names the symbols that others may use, one in a line, and lines of comment that
/// begin with '#'. The same arguments give the same bytes. Throws LinkError, also for an export
/// that the object has not and for an import that no library has.
std::string linkModule(std::string_view object, std::string_view exports,
                       const std::vector<StubLibrary>& libraries);

}  // namespace quillet::linker
