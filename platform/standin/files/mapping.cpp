// SPDX-License-Identifier: MIT
#include "platform/standin/files/mapping.h"

#include <signal.h>
#include <sys/mman.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <system_error>

namespace quillet::standin {

namespace {

/// The mappings of this process, where a signal handler can look through them at any time. Beyond
/// these a fault ends the process.
std::array<std::atomic<Mapping*>, 64> mappings;

void exchange(Mapping* before, Mapping* after) {
    for (auto& place : mappings) {
        Mapping* expected = before;
        if (place.compare_exchange_strong(expected, after)) return;
    }
}

struct sigaction& previousAction() {
    static struct sigaction action = {};
    return action;
}

/// The access is made again afterwards, and so meets what was put in its way or the handler before.
void takeFault(int signal, siginfo_t* fault, void* /*context*/) {
    const int error = errno;
    if (!Mapping::replaceAt(fault->si_addr)) sigaction(signal, &previousAction(), nullptr);
    errno = error;
}

int handleFaults() {
    struct sigaction action = {};
    action.sa_sigaction = takeFault;
    action.sa_flags = SA_SIGINFO;
    return sigaction(SIGBUS, &action, &previousAction());
}

}  // namespace

Mapping::Mapping(int descriptor, std::size_t size, const std::filesystem::path& path)
    : size_{size}, memory_{mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0)} {
    [[maybe_unused]] static const int handled = handleFaults();
    if (memory_ == MAP_FAILED) {
        throw std::system_error(errno, std::generic_category(), path.string());
    }
    exchange(nullptr, this);
}

Mapping::~Mapping() {
    exchange(this, nullptr);
    munmap(memory_, size_);
}

bool Mapping::holds(const void* address) const {
    const auto* const begin = static_cast<const std::byte*>(memory_);
    return address >= begin && address < begin + size_;
}

bool Mapping::replace() {
    constexpr int flags = MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED | MAP_NORESERVE;
    if (mmap(memory_, size_, PROT_READ | PROT_WRITE, flags, -1, 0) == MAP_FAILED) return false;
    isLost_.store(true);
    return true;
}

bool Mapping::replaceAt(const void* address) {
    const auto isHit = [&](const auto& place) {
        Mapping* const mapping = place.load();
        return mapping != nullptr && mapping->holds(address) && mapping->replace();
    };
    return std::ranges::any_of(mappings, isHit);
}

}  // namespace quillet::standin
