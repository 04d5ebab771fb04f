// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace quillet::macho {

/// Whether the device has a library at the path `library`.
bool hasLibrary(const std::string& library);

/// The address of what a module imports as `symbol`, a name with the linker's underscore, from the
/// device's library at the path `library`: a function or variable that this loader or the stand-in
/// has, or one of the platform's classes. Null when the device has no such library or
/// the library no such symbol, whatever others have.
const void* findImport(const std::string& library, const std::string& symbol);

}  // namespace quillet::macho
