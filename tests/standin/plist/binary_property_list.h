// SPDX-License-Identifier: MIT
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/standin/plist/property_list.h"

namespace quillet::standin {

/// The lowest `size` bytes of `number`, the high byte first.
inline std::string bigEndian(std::uint64_t number, std::size_t size) {
    std::string bytes(size, '\0');
    for (std::size_t i = size; i-- > 0; number >>= 8) bytes[i] = static_cast<char>(number);
    return bytes;
}

/// A file in the binary form, laid out from the bytes of its objects.
struct BinaryPropertyList {
    std::vector<std::string> objects;
    std::size_t offsetSize = 2;
    std::size_t referenceSize = 1;
    std::uint64_t top = 0;

    std::string bytes() const {
        std::string file = "bplist00";
        std::string offsets;
        for (const std::string& object : objects) {
            offsets += bigEndian(file.size(), offsetSize);
            file += object;
        }
        const std::size_t start = file.size();
        return file + offsets + std::string(6, '\0') + bigEndian(offsetSize, 1) +
               bigEndian(referenceSize, 1) + bigEndian(objects.size(), 8) + bigEndian(top, 8) +
               bigEndian(start, 8);
    }
};

/// A file whose only object is `object`.
inline std::string binaryFileOf(std::string object) {
    return BinaryPropertyList{{std::move(object)}}.bytes();
}

inline std::string marker(unsigned kind, std::size_t count) {
    if (count < 15) return std::string(1, static_cast<char>(kind << 4 | count));
    return std::string(1, static_cast<char>(kind << 4 | 0xFU)) + '\x12' + bigEndian(count, 4);
}

inline std::string asciiObject(const std::string& text) { return marker(0x5, text.size()) + text; }

inline std::string realObject(double number) {
    return marker(0x2, 3) + bigEndian(std::bit_cast<std::uint64_t>(number), 8);
}

inline std::string references(const std::vector<std::uint64_t>& numbers, std::size_t size = 1) {
    std::string bytes;
    for (const std::uint64_t number : numbers) bytes += bigEndian(number, size);
    return bytes;
}

inline std::string arrayObject(const std::vector<std::uint64_t>& elements, std::size_t size = 1) {
    return marker(0xA, elements.size()) + references(elements, size);
}

inline std::string dictionaryObject(const std::vector<std::uint64_t>& keys,
                                    const std::vector<std::uint64_t>& values,
                                    std::size_t size = 1) {
    return marker(0xD, keys.size()) + references(keys, size) + references(values, size);
}

/// What a file with the one object reads as.
inline std::optional<Value> readObject(const std::string& object) {
    return readBinaryPropertyList(binaryFileOf(object));
}

}  // namespace quillet::standin
