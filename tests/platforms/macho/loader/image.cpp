// SPDX-License-Identifier: MIT
#include "tests/platforms/macho/loader/image.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <limits>

#include "platform/standin/runtime/module.h"

namespace quillet::macho {

namespace {

/// The end of the last segment, a multiple of the page size.
std::size_t extent(const std::vector<Segment>& segments) {
    const auto page = static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE));
    std::uint64_t end = 0;
    for (const Segment& segment : segments) {
        if (segment.address % page != 0) malformed("a segment that does not begin a page");
        if (segment.size > std::numeric_limits<std::uint32_t>::max() ||
            segment.address > std::numeric_limits<std::uint32_t>::max()) {
            malformed("a segment beyond 4 GB");
        }
        end = std::max(end, segment.address + segment.size);
    }
    return static_cast<std::size_t>((end + page - 1) / page * page);
}

}  // namespace

Image::Image(const Layout& layout)
    : segments_{layout.segments}, sections_{layout.sections}, size_{extent(layout.segments)} {
    void* const memory =
        mmap(nullptr, size_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) throw standin::BundleError("no memory for the module");
    base_ = static_cast<std::byte*>(memory);
    for (const Segment& segment : segments_) {
        std::ranges::copy(segment.content, base_ + segment.address);
    }
}

Image::~Image() { munmap(base_, size_); }

void Image::protect() {
    for (const Segment& segment : segments_) {
        std::byte* const begin = base_ + segment.address;
        const int protection =
            PROT_READ | (segment.writable ? PROT_WRITE : 0) | (segment.executable ? PROT_EXEC : 0);
        const auto size = static_cast<std::size_t>(segment.size);
        if (mprotect(begin, size, protection) != 0) {
            throw standin::BundleError("the module's memory cannot be protected");
        }
        if (segment.executable) {
            // Processors other than x86 do not see new code by themselves.
            __builtin___clear_cache(reinterpret_cast<char*>(begin),
                                    reinterpret_cast<char*>(begin + size));
        }
    }
}

std::byte* Image::place(std::uint64_t address) const {
    if (address >= size_) malformed("an address outside the module");
    return base_ + address;
}

bool Image::isCode(std::uint64_t address) const {
    return std::ranges::any_of(segments_, [&](const Segment& segment) {
        return segment.executable && address >= segment.address &&
               address - segment.address < segment.size;
    });
}

std::byte* Image::slot(std::size_t segment, std::uint64_t offset) const {
    if (segment >= segments_.size()) malformed("a segment that there is not");
    const Segment& target = segments_[segment];
    if (!target.writable || offset > target.size || target.size - offset < sizeof(void*)) {
        malformed("an address to be set outside the module's data");
    }
    return base_ + target.address + offset;
}

const char* Image::text(const void* place) const {
    const std::size_t size = left(place);
    if (std::memchr(place, '\0', size) == nullptr) malformed("a text without an end");
    return static_cast<const char*>(place);
}

std::span<const void* const> Image::addresses(std::string_view name) const {
    const auto found = std::ranges::find(sections_, name, &Section::name);
    if (found == sections_.end()) return {};
    return values<const void*>(place(found->address),
                               static_cast<std::size_t>(found->size / sizeof(void*)));
}

void Image::check(const void* place, std::size_t size, std::size_t alignment) const {
    if (size > left(place)) malformed("data outside the module");
    if (reinterpret_cast<std::uintptr_t>(place) % alignment != 0) malformed("data out of step");
}

/// How many bytes of the module there are from `place` on.
std::size_t Image::left(const void* place) const {
    const auto address = reinterpret_cast<std::uintptr_t>(place);
    const auto begin = reinterpret_cast<std::uintptr_t>(base_);
    if (address < begin || address - begin >= size_) malformed("data outside the module");
    return size_ - (address - begin);
}

}  // namespace quillet::macho
