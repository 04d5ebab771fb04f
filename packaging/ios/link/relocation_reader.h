// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>
#include <vector>

#include "packaging/ios/link/object_file.h"

namespace quillet::linker {

/// Reads the relocations of a section, of which `object` has all sections and symbols. Throws
/// LinkError with the name of a relocation that this linker does not know.
std::vector<Relocation> readRelocations(std::string_view table, const ObjectFile& object,
                                        std::size_t section);

}  // namespace quillet::linker
