// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace quillet::standin {

/// A name of the notification service, in memory shared between processes; free while it has none.
struct NameEntry {
    static constexpr std::size_t maxLength = 239;

    std::atomic<std::uint64_t> state;
    std::atomic<std::uint32_t> posts;
    /// What sealOf says of the name; 0 while there is none. Stored last when it is set.
    std::atomic<std::uint32_t> seal;
    std::uint8_t length;
    char name[maxLength];

    std::string_view view() const { return {name, length}; }
};

/// A number derived from the name, never 0. FNV-1a.
std::uint32_t sealOf(std::string_view name);

/// Gives a free entry a name of 1 to maxLength bytes.
void setName(NameEntry& entry, std::string_view name);

/// Whether these are entries with names, whole and each different, and behind them at least one
/// that is free and zeros. Others may be setting names meanwhile, one at a time and in their order,
/// and may have died of it.
bool areSound(std::span<const NameEntry> entries);

}  // namespace quillet::standin
