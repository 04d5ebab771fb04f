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

alignas(std::max_align_t) std::byte reserve[reserveSize];

/// Bytes; they are never given back, as there is no need for more.
std::atomic<std::size_t> taken = 0;

/// Null when too little is left.
void* takeReserve(std::size_t size) {
    constexpr std::size_t unit = alignof(std::max_align_t);
    std::size_t begin = taken;
    do {
        if (size > reserveSize - begin) return nullptr;
    } while (!taken.compare_exchange_weak(begin, begin + (size + unit - 1) / unit * unit));
    return reserve + begin;
}

bool isReserve(const void* memory) {
    constexpr std::less<> before;
    return !before(memory, reserve) && before(memory, reserve + reserveSize);
}

void* take(std::size_t size) {
    // Each block has an address of its own, even one of no bytes.
    const std::size_t bytes = std::max<std::size_t>(size, 1);
    // NOLINTNEXTLINE(cppcoreguidelines-no-malloc): there is nothing below operator new but this.
    void* const memory = std::malloc(bytes);
    return memory != nullptr ? memory : takeReserve(bytes);
}

void giveBack(void* memory) {
    // NOLINTNEXTLINE(cppcoreguidelines-no-malloc): as above.
    if (!isReserve(memory)) std::free(memory);
}

}  // namespace

}  // namespace quillet

// The arrays' forms, and those without exceptions, come down to these.
void* operator new(std::size_t size) {
    if (void* const memory = quillet::take(size)) return memory;
    throw std::bad_alloc{};
}
void operator delete(void* memory) noexcept { quillet::giveBack(memory); }
void operator delete(void* memory, std::size_t /*size*/) noexcept { quillet::giveBack(memory); }
