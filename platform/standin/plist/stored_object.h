// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>

#include "platform/standin/plist/tape.h"

namespace quillet::standin {

/// The high half of an object's first byte in a binary property list; the low half, its info, is
/// what stands in brackets:
///
///     flag       [8] false | [9] true
///     integer    [n] 2^n bytes, n up to 4: unsigned up to four bytes, signed from eight on
///     real       [2] 4 bytes | [3] 8 bytes
///     date       [3] 8 bytes, a real number of seconds
///     data       [count] bytes
///     ascii      [count] bytes
///     utf16      [count] units of two bytes
///     uid        [n] n + 1 bytes
///     array      [count] references
///     dictionary [count] references to keys, as many to values
///
/// A count of 15 or more is info 15 and an integer object. Numbers begin with the high byte.
enum class Marker : std::uint8_t {
    flag = 0x0,
    integer = 0x1,
    real = 0x2,
    date = 0x3,
    data = 0x4,
    ascii = 0x5,
    utf16 = 0x6,
    uid = 0x8,
    array = 0xA,
    dictionary = 0xD
};

/// Bytes at the end of a file, which tell where its objects are.
inline constexpr std::size_t trailerSize = 32;

/// The unsigned number in `bytes`, of which the last eight count.
inline std::uint64_t bigEndian(std::string_view bytes) {
    std::uint64_t number = 0;
    for (const char byte : bytes) number = number << 8 | static_cast<unsigned char>(byte);
    return number;
}

/// The same for numbers of one size, 1 to 16 bytes.
class NumberReader {
public:
    explicit NumberReader(std::size_t size)
        : unused_{std::max(size, most) - most}, shift_{8 * (most - std::min(size, most))} {}

    /// At a place where no fewer than eight bytes can be read.
    std::uint64_t at(const char* bytes) const {
        std::uint64_t number = 0;
        std::memcpy(&number, bytes + unused_, most);
        constexpr bool isLittle = std::endian::native == std::endian::little;
        return (isLittle ? __builtin_bswap64(number) : number) >> shift_;
    }

private:
    static constexpr std::size_t most = sizeof(std::uint64_t);

    std::size_t unused_;
    std::size_t shift_;
};

/// An object's first byte, split, and what follows it up to the end of all objects, after which a
/// trailer comes: sixteen bytes more can be read.
struct StoredObject {
    Marker marker = Marker::flag;
    unsigned info = 0;
    std::string_view rest;
};

/// Takes the next `size` bytes, which must be there.
inline std::string_view takeBytes(StoredObject& object, std::size_t size) {
    const std::string_view bytes = object.rest.substr(0, size);
    object.rest.remove_prefix(size);
    return bytes;
}

/// The info of an object whose count is an object of its own.
inline constexpr unsigned countFollows = 15;

/// Takes the count that follows an object's first byte. Nothing when it is cut short.
std::optional<std::uint64_t> takeLongCount(StoredObject& object);

/// Takes an object's count. Nothing when the object lacks the room for so many elements of
/// `elementSize` bytes.
inline std::optional<std::size_t> takeCount(StoredObject& object, std::size_t elementSize) {
    std::uint64_t count = object.info;
    // As most are: in an integer of one byte.
    constexpr char oneByte = 0x10;
    if (object.info == countFollows && object.rest.size() > 1 && object.rest[0] == oneByte) {
        count = static_cast<unsigned char>(object.rest[1]);
        object.rest.remove_prefix(2);
    } else if (object.info == countFollows) {
        const auto longCount = takeLongCount(object);
        if (!longCount || *longCount > object.rest.size()) return std::nullopt;
        count = *longCount;
    }
    if (count * elementSize > object.rest.size()) return std::nullopt;
    return static_cast<std::size_t>(count);
}

/// The value of an object that is neither a text nor a container. Nothing when it is malformed.
std::optional<Node> singleIn(StoredObject object);

/// A string's or data's bytes as they stand in the file.
struct StoredText {
    Kind kind = Kind::string;
    bool isUTF16 = false;
    std::string_view bytes;
};

/// Nothing for another object, or one that is cut short.
inline std::optional<StoredText> textIn(StoredObject object) {
    const bool isData = object.marker == Marker::data;
    const bool isUTF16 = object.marker == Marker::utf16;
    if (!isData && !isUTF16 && object.marker != Marker::ascii) return std::nullopt;
    const std::size_t unitSize = isUTF16 ? 2 : 1;
    const auto count = takeCount(object, unitSize);
    if (!count) return std::nullopt;
    return StoredText{isData ? Kind::data : Kind::string, isUTF16,
                      takeBytes(object, *count * unitSize)};
}

/// Puts a string's characters into `text`. False when its bytes are UTF-8 as they are.
bool decode(const StoredText& stored, std::string& text);

}  // namespace quillet::standin
