// SPDX-License-Identifier: MIT
#include "tests/bounds/counted_memory.h"

#include <malloc.h>

#include <atomic>
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

void* take(std::size_t size) {
    if (isRefused()) throw std::bad_alloc{};
    void* const memory = std::malloc(size);
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

// The arrays' forms, and those without exceptions, come down to these.
void* operator new(std::size_t size) { return take(size); }
void operator delete(void* memory) noexcept { giveBack(memory); }
void operator delete(void* memory, std::size_t /*size*/) noexcept { giveBack(memory); }

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
