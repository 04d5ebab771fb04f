// SPDX-License-Identifier: MIT
#include "tests/bounds/counted_memory.h"

#include <malloc.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <new>

namespace {

std::atomic<std::size_t> used;
std::atomic<std::size_t> highest;

/// Of RefusedMemory; nothing is refused while `granted` is endless.
constexpr int endless = -1;
thread_local int granted = endless;
thread_local bool refusesAll = false;
thread_local bool refused = false;

bool isRefused() {
    if (granted == endless) return false;
    if (granted > 0) {
        --granted;
        return false;
    }
    if (!refusesAll) granted = endless;
    refused = true;
    return true;
}

constexpr std::size_t defaultAlignment = alignof(std::max_align_t);

void* take(std::size_t size, std::size_t alignment) {
    if (isRefused()) throw std::bad_alloc{};
    const std::size_t units = (std::max<std::size_t>(size, 1) + alignment - 1) / alignment;
    void* const memory = alignment > defaultAlignment
                             ? std::aligned_alloc(alignment, units * alignment)
                             : std::malloc(units * alignment);
    if (memory == nullptr) throw std::bad_alloc{};
    const std::size_t now = used += malloc_usable_size(memory);
    std::size_t seen = highest;
    while (seen < now && !highest.compare_exchange_weak(seen, now)) {
    }
    return memory;
}

void giveBack(void* memory) noexcept {
    used -= malloc_usable_size(memory);
    std::free(memory);
}

}  // namespace

// The arrays' forms, and those without exceptions, come down to these. Memory resources ask for an
// alignment whatever it is.
void* operator new(std::size_t size) { return take(size, defaultAlignment); }
void* operator new(std::size_t size, std::align_val_t alignment) {
    return take(size, static_cast<std::size_t>(alignment));
}
void operator delete(void* memory) noexcept { giveBack(memory); }
void operator delete(void* memory, std::size_t /*size*/) noexcept { giveBack(memory); }
void operator delete(void* memory, std::align_val_t /*alignment*/) noexcept { giveBack(memory); }
void operator delete(void* memory, std::size_t /*size*/, std::align_val_t /*alignment*/) noexcept {
    giveBack(memory);
}

namespace quillet::test {

CountedMemory::CountedMemory() : before_{used} { highest = before_; }

std::size_t CountedMemory::peak() const { return highest - before_; }

RefusedMemory::RefusedMemory(int granted, Which which) {
    ::granted = granted;
    refusesAll = which == Which::all;
    refused = false;
}

RefusedMemory::~RefusedMemory() { granted = endless; }

bool RefusedMemory::hasRefused() const { return refused; }

}  // namespace quillet::test
