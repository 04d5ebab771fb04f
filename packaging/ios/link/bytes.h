// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string>
#include <string_view>

namespace quillet::linker {

/// What this linker does not do, or what is malformed, said with its name.
class LinkError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

[[noreturn]] inline void refuse(const std::string& what) { throw LinkError{what}; }

/// `size` bytes of a file from `offset`. Throws LinkError when there are not so many.
inline std::string_view part(std::string_view bytes, std::size_t offset, std::size_t size) {
    if (offset > bytes.size() || size > bytes.size() - offset) refuse("the object is cut short");
    return bytes.substr(offset, size);
}

template <class Record>
Record recordAt(std::string_view bytes, std::size_t offset) {
    Record record;
    std::memcpy(&record, part(bytes, offset, sizeof record).data(), sizeof record);
    return record;
}

template <class Record>
void append(std::string& bytes, const Record& record) {
    bytes.append(reinterpret_cast<const char*>(&record), sizeof record);
}

/// The number of bytes, as the file format counts them.
inline std::uint32_t sizeOf(std::string_view bytes) {
    return static_cast<std::uint32_t>(bytes.size());
}

/// Writes over what is there, which must be enough.
template <class Record>
void put(std::string& bytes, std::size_t offset, const Record& record) {
    std::memcpy(bytes.data() + offset, &record, sizeof record);
}

/// `value` brought up to a multiple of `alignment`, a power of two.
constexpr std::uint32_t aligned(std::uint32_t value, std::uint32_t alignment) {
    return (value + alignment - 1) & ~(alignment - 1);
}

}  // namespace quillet::linker
