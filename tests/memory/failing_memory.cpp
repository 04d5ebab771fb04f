// SPDX-License-Identifier: MIT
#include "tests/memory/failing_memory.h"

#include <cstddef>

namespace {

/// How many requests are still met; none is counted while it is negative.
int left = -1;
bool isForEver = false;
bool hasFailed = false;

}  // namespace

extern "C" void* __real_malloc(std::size_t size);

extern "C" void* __wrap_malloc(std::size_t size) {
    if (left < 0) return __real_malloc(size);
    if (left > 0) {
        --left;
        return __real_malloc(size);
    }
    hasFailed = true;
    if (!isForEver) left = -1;
    return nullptr;
}

namespace quillet::test {

void failMemory(int request, Failing failing) {
    left = request;
    isForEver = failing == Failing::forEver;
}

bool hasMemoryFailed() { return hasFailed; }

}  // namespace quillet::test
