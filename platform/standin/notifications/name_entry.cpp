// SPDX-License-Identifier: MIT
#include "platform/standin/notifications/name_entry.h"

#include <algorithm>
#include <cstring>
#include <unordered_set>

namespace quillet::standin {

namespace {

static_assert(std::atomic<std::uint64_t>::is_always_lock_free);
static_assert(std::atomic<std::uint32_t>::is_always_lock_free);
static_assert(sizeof(NameEntry) == 256, "what lies in the files of devices");

/// Each byte is like the one before, and the first is 0.
bool isZero(std::span<const char> bytes) {
    return bytes.empty() ||
           (bytes[0] == 0 && std::memcmp(bytes.data(), bytes.data() + 1, bytes.size() - 1) == 0);
}

/// Whether an entry with a seal is as setName leaves it.
bool isSound(const NameEntry& entry) {
    return entry.length > 0 && entry.length <= sizeof entry.name &&
           entry.seal.load() == sealOf(entry.view()) &&
           isZero(std::span{entry.name}.subspan(entry.length));
}

/// Whether all is zero behind the first name that is missing. Its own entry may hold part of one,
/// if who was adding it died.
bool isFree(std::span<const NameEntry> entries) {
    const NameEntry& first = entries.front();
    const std::span rest = entries.subspan(1);
    return first.state.load() == 0 && first.posts.load() == 0 &&
           isZero({reinterpret_cast<const char*>(rest.data()), rest.size_bytes()});
}

}  // namespace

std::uint32_t sealOf(std::string_view name) {
    std::uint32_t seal = 2166136261;
    for (const char byte : name) seal = (seal ^ static_cast<unsigned char>(byte)) * 16777619;
    return std::max(seal, std::uint32_t{1});
}

void setName(NameEntry& entry, std::string_view name) {
    std::ranges::fill(entry.name, '\0');
    entry.length = static_cast<std::uint8_t>(name.copy(entry.name, sizeof entry.name));
    entry.seal.store(sealOf(name));
}

bool areSound(std::span<const NameEntry> entries) {
    std::unordered_set<std::string_view> names;
    std::size_t count = 0;
    for (;;) {
        for (; count < entries.size() && entries[count].seal.load() != 0; ++count) {
            const bool isNew =
                isSound(entries[count]) && names.insert(entries[count].view()).second;
            if (!isNew) return false;
        }
        if (count == entries.size()) return false;
        if (isFree(entries.subspan(count))) return true;
        std::atomic_thread_fence(std::memory_order_acquire);
        if (entries[count].seal.load() == 0) return false;
    }
}

}  // namespace quillet::standin
