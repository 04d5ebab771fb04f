// SPDX-License-Identifier: MIT
#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <functional>
#include <new>

// The host's operator new. When the system has no more memory, what has been set aside lets a flip
// come to its end: given up half-way, it would leave its own settings in place of the user's, and
// the bundle's frames know no exceptions.

namespace quillet {

namespace {

/// In bytes; many times what a flip takes with the trace. The system provides none of it before it
/// is used.
constexpr std::size_t reserveSize = std::size_t{16} << 20U;

/// Of what malloc yields.
constexpr std::size_t defaultAlignment = alignof(std::max_align_t);

/// As much as anybody here aligns anything.
alignas(4096) std::byte reserve[reserveSize];

/// Bytes; they are never given back, as there is no need for more.
std::atomic<std::size_t> taken = 0;

constexpr std::size_t roundUp(std::size_t size, std::size_t unit) {
    return (size + unit - 1) / unit * unit;
}

/// Null when too little is left.
void* takeReserve(std::size_t size, std::size_t alignment) {
    std::size_t before = taken;
    std::size_t begin = 0;
    do {
        begin = roundUp(before, alignment);
        if (begin > reserveSize || size > reserveSize - begin) return nullptr;
    } while (!taken.compare_exchange_weak(before, begin + size));
    return reserve + begin;
}

bool isReserve(const void* memory) {
    constexpr std::less<> before;
    return !before(memory, reserve) && before(memory, reserve + reserveSize);
}

/// Null when there is no more.
void* find(std::size_t size, std::size_t alignment) {
    // Each block has an address of its own, even one of no bytes.
    const std::size_t bytes = roundUp(std::max<std::size_t>(size, 1), alignment);
    // NOLINTBEGIN(cppcoreguidelines-no-malloc): there is nothing below operator new but this.
    void* memory =
        alignment > defaultAlignment ? std::aligned_alloc(alignment, bytes) : std::malloc(bytes);
    // NOLINTEND(cppcoreguidelines-no-malloc)
    return memory == nullptr ? takeReserve(bytes, alignment) : memory;
}

/// Throws std::bad_alloc when there is no more.
void* take(std::size_t size, std::size_t alignment) {
    void* const memory = find(size, alignment);
    if (memory == nullptr) throw std::bad_alloc{};
    return memory;
}

void giveBack(void* memory) {
    // NOLINTNEXTLINE(cppcoreguidelines-no-malloc): as above.
    if (!isReserve(memory)) std::free(memory);
}

}  // namespace

}  // namespace quillet

// The arrays' forms come down to these; so would the one without exceptions, but that a sanitizer
// has one of its own. Memory resources ask for an alignment whatever it is.
void* operator new(std::size_t size) { return quillet::take(size, quillet::defaultAlignment); }
void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
    return quillet::find(size, quillet::defaultAlignment);
}
void* operator new(std::size_t size, std::align_val_t alignment) {
    return quillet::take(size, static_cast<std::size_t>(alignment));
}
void operator delete(void* memory) noexcept { quillet::giveBack(memory); }
void operator delete(void* memory, std::size_t /*size*/) noexcept { quillet::giveBack(memory); }
void operator delete(void* memory, std::align_val_t /*alignment*/) noexcept {
    quillet::giveBack(memory);
}
void operator delete(void* memory, std::size_t /*size*/, std::align_val_t /*alignment*/) noexcept {
    quillet::giveBack(memory);
}
