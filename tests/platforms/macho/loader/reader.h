// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>

namespace quillet::macho {

using Bytes = std::span<const std::byte>;

/// Throws BundleError.
[[noreturn]] void malformed(const std::string& what);

/// `size` of the bytes, from `offset`. Throws BundleError when there are not so many.
Bytes part(Bytes bytes, std::uint64_t offset, std::uint64_t size);

/// Takes values from the front of a row of bytes. Every function throws BundleError at its end.
class Reader {
public:
    explicit Reader(Bytes bytes) : bytes_{bytes} {}

    bool atEnd() const { return bytes_.empty(); }

    template <class T>
    requires std::is_trivially_copyable_v<T> T take() {
        T value;
        std::memcpy(&value, takeBytes(sizeof value).data(), sizeof value);
        return value;
    }
    Bytes takeBytes(std::uint64_t size);

    /// A number in groups of seven bits, the lowest first.
    std::uint64_t takeUnsigned();
    std::int64_t takeSigned();
    /// Characters up to a zero byte, which is taken too.
    std::string_view takeText();

private:
    struct Groups {
        std::uint64_t value;
        unsigned bits;
        bool highest;
    };
    Groups takeGroups();

    Bytes bytes_;
};

}  // namespace quillet::macho
