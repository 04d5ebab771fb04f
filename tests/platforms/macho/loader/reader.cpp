// SPDX-License-Identifier: MIT
#include "tests/platforms/macho/loader/reader.h"

#include <algorithm>

#include "platform/standin/runtime/module.h"

namespace quillet::macho {

void malformed(const std::string& what) { throw standin::BundleError("malformed: " + what); }

Bytes part(Bytes bytes, std::uint64_t offset, std::uint64_t size) {
    if (offset > bytes.size() || size > bytes.size() - offset) malformed("ends too early");
    return bytes.subspan(static_cast<std::size_t>(offset), static_cast<std::size_t>(size));
}

Bytes Reader::takeBytes(std::uint64_t size) {
    const Bytes taken = part(bytes_, 0, size);
    bytes_ = bytes_.subspan(taken.size());
    return taken;
}

Reader::Groups Reader::takeGroups() {
    Groups groups = {};
    for (bool more = true; more; groups.bits += 7) {
        if (groups.bits >= 64) malformed("a number of more than 64 bits");
        const auto group = take<std::uint8_t>();
        groups.value |= std::uint64_t{group & 0x7FU} << groups.bits;
        groups.highest = (group & 0x40) != 0;
        more = (group & 0x80) != 0;
    }
    return groups;
}

std::uint64_t Reader::takeUnsigned() { return takeGroups().value; }

std::int64_t Reader::takeSigned() {
    auto [value, bits, negative] = takeGroups();
    if (negative && bits < 64) value |= ~std::uint64_t{0} << bits;
    return static_cast<std::int64_t>(value);
}

std::string_view Reader::takeText() {
    const auto end = std::ranges::find(bytes_, std::byte{0});
    const auto size = static_cast<std::size_t>(end - bytes_.begin());
    const Bytes text = takeBytes(size + 1);
    return {reinterpret_cast<const char*>(text.data()), size};
}

}  // namespace quillet::macho
