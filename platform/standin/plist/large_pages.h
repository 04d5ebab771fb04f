// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>

namespace quillet::standin {

/// Asks the system for larger pages than usual for memory that nothing was written to yet, and that
/// soon will be from its beginning to its end: a fault for each usual page takes longer than
/// filling it. Where there are none, or the memory is small, nothing changes. See MADV_HUGEPAGE in
/// madvise(2).
void preferLargePages(void* memory, std::size_t size);

/// Makes room for so many in a row of values that has none yet, of larger pages.
template <class Row>
void reserveLargePages(Row& row, std::size_t count) {
    row.reserve(count);
    preferLargePages(row.data(), row.capacity() * sizeof *row.data());
}

}  // namespace quillet::standin
