// SPDX-License-Identifier: MIT
#include "platform/standin/plist/large_pages.h"

#include <sys/mman.h>

#include <cstddef>
#include <memory>

namespace quillet::standin {

void preferLargePages(void* memory, std::size_t size) {
    constexpr std::size_t usualPage = 4096;
    constexpr std::size_t worthwhile = std::size_t{4} << 20U;
    if (size < worthwhile) return;
    std::align(usualPage, usualPage, memory, size);
    madvise(memory, size - size % usualPage, MADV_HUGEPAGE);
}

}  // namespace quillet::standin
