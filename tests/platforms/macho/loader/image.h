// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "tests/platforms/macho/loader/layout.h"

namespace quillet::macho {

/// A module's memory in this process. Whatever is read from it is checked to lie in it; every
/// function throws BundleError for what does not.
class Image {
public:
    /// Maps the segments, writable all of them.
    explicit Image(const Layout& layout);
    ~Image();
    Image(const Image&) = delete;
    Image& operator=(const Image&) = delete;

    /// Gives each segment the protection that it asks for.
    void protect();

    /// Where in this process the linker's address 0 has come to lie.
    std::byte* base() const { return base_; }

    /// The place in this process of the linker's `address`.
    std::byte* place(std::uint64_t address) const;

    /// Whether there is code at the linker's `address`, rather than data.
    bool isCode(std::uint64_t address) const;

    /// The pointer-sized slot at `offset` of a segment that may be written to.
    std::byte* slot(std::size_t segment, std::uint64_t offset) const;

    /// `count` values at `place`.
    template <class T>
    std::span<const T> values(const void* place, std::size_t count) const {
        if (count > size_) malformed("a list longer than the module");
        check(place, count * sizeof(T), alignof(T));
        return {static_cast<const T*>(place), count};
    }
    template <class T>
    const T& value(const void* place) const {
        return values<T>(place, 1).front();
    }
    /// The text at `place`, which ends with a zero byte.
    const char* text(const void* place) const;

    /// The addresses in the section `name`; none when there is no such section.
    std::span<const void* const> addresses(std::string_view name) const;

private:
    void check(const void* place, std::size_t size, std::size_t alignment) const;
    std::size_t left(const void* place) const;

    std::vector<Segment> segments_;
    std::vector<Section> sections_;
    std::size_t size_ = 0;
    std::byte* base_ = nullptr;
};

}  // namespace quillet::macho
