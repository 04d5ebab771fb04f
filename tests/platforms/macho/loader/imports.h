// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace quillet::macho {

/// The address of what a module imports as `symbol`, a name with the linker's underscore: a
/// function or variable that this loader or the stand-in has, or one of the platform's classes.
/// Null when it is none of these. The library that the module expects it in does not matter.
const void* findImport(const std::string& symbol);

}  // namespace quillet::macho
