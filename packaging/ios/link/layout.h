// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "packaging/ios/link/object_file.h"

namespace quillet::linker {

// The file and the memory alike; sections of zeros are in the file too. So a place is an address
// and an offset at once.
//
//   0       __TEXT      header, load commands, room for more
//   0x1000              the object's sections, stubs
//           __DATA      the object's sections, the stubs' pointers, sections of zeros
//           __LINKEDIT  tables (and, appended by the signing tool, the signature)
//
// Each segment begins on a page.

inline constexpr std::uint32_t pageSize = 0x1000;

/// A word that a library's symbol is to be written to.
struct ImportSlot {
    std::uint32_t place;
    /// Its index.
    std::uint32_t symbol;
};

/// The segments __TEXT and __DATA with everything in its place.
struct Image {
    /// Both segments. The first page is zero.
    std::string content;
    std::uint32_t dataStart;
    /// The object's, in the order of their places.
    std::vector<const Section*> sections;
    /// Where pointers into the module are. They ascend.
    std::vector<std::uint32_t> rebases;
    std::vector<ImportSlot> imports;
};

/// Adds a section of stubs to the object, and one with their pointers, for its calls of imported
/// functions; gives all sections places; writes into them what depends on these.
Image makeImage(ObjectFile& object);

}  // namespace quillet::linker
