// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "tests/platforms/macho/loader/image.h"
#include "tests/platforms/macho/loader/layout.h"

namespace quillet::macho {

/// The address of what a module imports as `symbol` from the library at `library`, a path of the
/// device; null when that library has no such symbol.
using Resolve = const void* (*)(const std::string& library, const std::string& symbol);

/// Sets the addresses in the module's data: those of its own parts, and those of its imports,
/// all of them at once. Throws BundleError for an import that the library which it names lacks,
/// unless the module can do without it; its address is then null.
void setAddresses(const Image& image, const Layout& layout, Resolve resolve);

}  // namespace quillet::macho
