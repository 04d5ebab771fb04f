// SPDX-License-Identifier: MIT
#include "platform/standin/plist/stored_object.h"

#include <bit>
#include <limits>

#include "platform/standin/plist/utf8.h"

namespace quillet::standin {
namespace {

constexpr unsigned countFollows = 15;

std::optional<std::uint64_t> countAfter(StoredObject& object) {
    if (object.rest.empty()) return std::nullopt;
    const std::uint64_t first = bigEndian(takeBytes(object, 1));
    const std::size_t size = std::size_t{1} << (first & 0x0FU);
    const bool isInteger = static_cast<Marker>(first >> 4) == Marker::integer;
    if (!isInteger || size > 16 || object.rest.size() < size) return std::nullopt;
    return bigEndian(takeBytes(object, size));
}

std::optional<Node> flagIn(const StoredObject& object) {
    constexpr unsigned no = 8;
    constexpr unsigned yes = 9;
    if (object.info != no && object.info != yes) return std::nullopt;
    return booleanNode(object.info == yes);
}

/// An integer of sixteen bytes must be one that fits in eight, signed or unsigned.
std::optional<Node> longIntegerIn(std::string_view bytes) {
    constexpr std::uint64_t allOnes = std::numeric_limits<std::uint64_t>::max();
    const std::uint64_t low = bigEndian(bytes);
    const std::uint64_t high = bigEndian(bytes.substr(0, 8));
    if (high == 0) return numberNode(low);
    if (high != allOnes || low >> 63 == 0) return std::nullopt;
    return integerNode(static_cast<std::int64_t>(low));
}

std::optional<Node> integerIn(StoredObject object) {
    const std::size_t size = std::size_t{1} << object.info;
    if (size > 16 || object.rest.size() < size) return std::nullopt;
    const std::string_view bytes = takeBytes(object, size);
    if (size == 16) return longIntegerIn(bytes);
    return integerNode(static_cast<std::int64_t>(bigEndian(bytes)));
}

std::optional<double> doubleIn(StoredObject object) {
    if (object.info != 3 || object.rest.size() < 8) return std::nullopt;
    return std::bit_cast<double>(bigEndian(takeBytes(object, 8)));
}

std::optional<double> realIn(StoredObject object) {
    if (object.info != 2) return doubleIn(object);
    if (object.rest.size() < 4) return std::nullopt;
    const auto bits = static_cast<std::uint32_t>(bigEndian(takeBytes(object, 4)));
    return static_cast<double>(std::bit_cast<float>(bits));
}

std::optional<Node> realNodeOf(Kind kind, std::optional<double> number) {
    return number ? std::optional{realNode(kind, *number)} : std::nullopt;
}

std::optional<Node> uidIn(StoredObject object) {
    const std::size_t size = object.info + 1;
    if (object.rest.size() < size) return std::nullopt;
    return uidNode(bigEndian(takeBytes(object, size)));
}

}  // namespace

std::string_view takeBytes(StoredObject& object, std::size_t size) {
    const std::string_view bytes = object.rest.substr(0, size);
    object.rest.remove_prefix(size);
    return bytes;
}

std::optional<std::size_t> takeCount(StoredObject& object, std::size_t elementSize) {
    const auto count = object.info == countFollows ? countAfter(object)
                                                   : std::optional<std::uint64_t>{object.info};
    if (!count || *count > object.rest.size() / elementSize) return std::nullopt;
    return static_cast<std::size_t>(*count);
}

std::optional<Node> singleIn(StoredObject object) {
    switch (object.marker) {
        case Marker::flag:
            return flagIn(object);
        case Marker::integer:
            return integerIn(object);
        case Marker::real:
            return realNodeOf(Kind::real, realIn(object));
        case Marker::date:
            return realNodeOf(Kind::date, doubleIn(object));
        case Marker::uid:
            return uidIn(object);
        default:
            return std::nullopt;
    }
}

std::optional<StoredText> textIn(StoredObject object) {
    const bool isData = object.marker == Marker::data;
    const bool isUTF16 = object.marker == Marker::utf16;
    if (!isData && !isUTF16 && object.marker != Marker::ascii) return std::nullopt;
    const std::size_t unitSize = isUTF16 ? 2 : 1;
    const auto count = takeCount(object, unitSize);
    if (!count) return std::nullopt;
    return StoredText{isData ? Kind::data : Kind::string, isUTF16,
                      takeBytes(object, *count * unitSize)};
}

bool decode(const StoredText& stored, std::string& text) {
    if (stored.isUTF16) {
        appendUTF16(text, stored.bytes, HighByte::first);
        return true;
    }
    if (isUTF8(stored.bytes)) return false;
    for (const char byte : stored.bytes) appendUTF8(text, static_cast<unsigned char>(byte));
    return true;
}

}  // namespace quillet::standin
