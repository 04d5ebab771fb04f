// SPDX-License-Identifier: MIT
#include "platform/standin/plist/stored_object.h"

#include <bit>
#include <limits>

#include "platform/standin/plist/utf8.h"

namespace quillet::standin {
namespace {

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

std::optional<std::uint64_t> takeLongCount(StoredObject& object) {
    if (object.rest.empty()) return std::nullopt;
    const auto first = static_cast<unsigned char>(takeBytes(object, 1).front());
    const std::size_t size = std::size_t{1} << (first & 0x0FU);
    const bool isInteger = static_cast<Marker>(first >> 4) == Marker::integer;
    if (!isInteger || size > 16 || object.rest.size() < size) return std::nullopt;
    return NumberReader{size}.at(takeBytes(object, size).data());
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
