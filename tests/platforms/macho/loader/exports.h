// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "tests/platforms/macho/loader/reader.h"

namespace quillet::macho {

/// The linker's address of the symbol that a module exports as `symbol`, as its trie of exports
/// has it; nothing when it exports none by that name. Throws BundleError.
std::optional<std::uint64_t> findExport(Bytes trie, std::string_view symbol);

}  // namespace quillet::macho
