// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <string>
#include <vector>

#include "packaging/ios/link/layout.h"
#include "packaging/ios/link/object_file.h"
#include "packaging/ios/link/stub_library.h"

namespace quillet::linker {

/// The segment __LINKEDIT: all tables that are not mapped into a place of their own. Ranges count
/// from the start of the file.
struct LinkEdit {
    std::string content;
    mach_o::Range rebases, binds, exports, functionStarts, dataInCode, symbols, indirect, names;
    std::uint32_t definedCount, undefinedCount, indirectCount;
    /// Where the indirect symbols of a section begin.
    std::map<const Section*, std::uint32_t> firstIndirect;
};

/// Makes the tables of a module whose segments so far are `image`. Throws LinkError for a name in
/// `exports` that the object does not define, and for an import that no library has.
LinkEdit makeLinkEdit(const ObjectFile& object, const Image& image,
                      const std::vector<std::string>& exports,
                      const std::vector<StubLibrary>& libraries);

}  // namespace quillet::linker
