// SPDX-License-Identifier: MIT
#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <utility>
#include <vector>

#include "platform/standin/plist/calendar.h"
#include "platform/standin/plist/property_list.h"
#include "platform/standin/plist/utf8.h"
#include "platform/standin/plist/value_builder.h"

namespace quillet::standin {
namespace {

using Container = ValueBuilder::Container;

constexpr std::string_view magic = "bplist00";
constexpr std::size_t trailerSize = 32;
/// What a file may take in memory, as a multiple of its size.
constexpr std::size_t expansionLimit = 64;

/// The unsigned number in `bytes`, of which there are at most eight, the high byte first.
std::uint64_t bigEndian(std::string_view bytes) {
    std::uint64_t number = 0;
    for (const char byte : bytes) number = number << 8 | static_cast<unsigned char>(byte);
    return number;
}

/// The bytes that a string takes outside of itself.
std::size_t heapBytes(const std::string& text) {
    return text.capacity() > std::string{}.capacity() ? text.capacity() + 1 : 0;
}

/// file    = "bplist00" object… offsets trailer
/// trailer = 6 bytes unused, offset size (1), reference size (1), number of objects (8),
///           top object (8), position of the offsets (8)
struct Trailer {
    std::size_t offsetSize = 0;
    std::size_t referenceSize = 0;
    std::uint64_t objects = 0;
    std::uint64_t top = 0;
    std::uint64_t offsets = 0;
};

std::optional<Trailer> trailerOf(std::string_view file) {
    if (file.size() < magic.size() + trailerSize || !file.starts_with(magic)) return std::nullopt;
    const std::size_t end = file.size() - trailerSize;
    const std::string_view bytes = file.substr(end);
    const Trailer trailer{static_cast<unsigned char>(bytes[6]),
                          static_cast<unsigned char>(bytes[7]), bigEndian(bytes.substr(8, 8)),
                          bigEndian(bytes.substr(16, 8)), bigEndian(bytes.substr(24, 8))};
    const auto isSize = [](std::size_t size) { return size >= 1 && size <= 8; };
    if (!isSize(trailer.offsetSize) || !isSize(trailer.referenceSize)) return std::nullopt;
    if (trailer.offsets > end) return std::nullopt;
    if (trailer.objects > (end - trailer.offsets) / trailer.offsetSize) return std::nullopt;
    return trailer;
}

/// A number that is known to be no larger than the file, which lies in memory.
std::size_t position(std::uint64_t inFile) { return static_cast<std::size_t>(inFile); }

/// An object's marker byte, split, and what follows it up to the end of all objects.
struct StoredObject {
    unsigned kind = 0;
    unsigned info = 0;
    std::string_view rest;
};

std::string_view takeBytes(StoredObject& object, std::size_t size) {
    const std::string_view bytes = object.rest.substr(0, size);
    object.rest.remove_prefix(size);
    return bytes;
}

/// Takes an object's count: its info, or after info 15 an integer object of 1, 2, 4 or 8 bytes.
/// Nothing when the object lacks the room for so many elements of `elementSize` bytes.
std::optional<std::size_t> takeCount(StoredObject& object, std::size_t elementSize) {
    std::uint64_t count = object.info;
    if (count == 15) {
        if (object.rest.empty()) return std::nullopt;
        const std::uint64_t marker = bigEndian(takeBytes(object, 1));
        const std::size_t size = std::size_t{1} << (marker & 0x0FU);
        if (marker >> 4 != 1 || size > 8 || object.rest.size() < size) return std::nullopt;
        count = bigEndian(takeBytes(object, size));
    }
    if (count > object.rest.size() / elementSize) return std::nullopt;
    return static_cast<std::size_t>(count);
}

std::optional<Value> integerIn(std::string_view bytes) {
    constexpr std::uint64_t allOnes = std::numeric_limits<std::uint64_t>::max();
    const std::uint64_t low = bigEndian(bytes.substr(bytes.size() < 8 ? 0 : bytes.size() - 8));
    if (bytes.size() < 8) return integerValue(low);
    if (bytes.size() == 8) return static_cast<std::int64_t>(low);
    const std::uint64_t high = bigEndian(bytes.substr(0, 8));
    if (high == 0) return integerValue(low);
    if (high != allOnes || low >> 63 == 0) return std::nullopt;
    return static_cast<std::int64_t>(low);
}

std::optional<Value> integerOf(StoredObject object) {
    const std::size_t size = std::size_t{1} << object.info;
    if (size > 16 || object.rest.size() < size) return std::nullopt;
    return integerIn(takeBytes(object, size));
}

std::optional<double> doubleOf(StoredObject object) {
    if (object.info != 3 || object.rest.size() < 8) return std::nullopt;
    return std::bit_cast<double>(bigEndian(takeBytes(object, 8)));
}

std::optional<Value> realOf(StoredObject object) {
    if (object.info != 2) return doubleOf(object);
    if (object.rest.size() < 4) return std::nullopt;
    const auto bits = static_cast<std::uint32_t>(bigEndian(takeBytes(object, 4)));
    return static_cast<double>(std::bit_cast<float>(bits));
}

std::optional<Value> dateOf(StoredObject object) {
    const auto seconds = doubleOf(object);
    if (!seconds || !isInCalendar({*seconds})) return std::nullopt;
    return Date{*seconds};
}

bool isASCIIOnly(std::string_view bytes) {
    return std::none_of(bytes.begin(), bytes.end(), [](char byte) { return (byte & 0x80) != 0; });
}

std::optional<std::string> stringOf(StoredObject object) {
    const bool isASCII = object.kind == 0x5;
    if (!isASCII && object.kind != 0x6) return std::nullopt;
    const std::size_t unitSize = isASCII ? 1 : 2;
    const auto count = takeCount(object, unitSize);
    if (!count) return std::nullopt;
    const std::string_view bytes = takeBytes(object, *count * unitSize);
    if (isASCII) return isASCIIOnly(bytes) ? std::optional{std::string{bytes}} : std::nullopt;
    std::string text;
    if (!appendUTF16BigEndian(text, bytes)) return std::nullopt;
    return text;
}

/// Goes through the objects from the top one, depth first. What references share is copied, so
/// each reference is charged the memory that it takes: neither time nor memory can outgrow that.
class BinaryReader {
public:
    BinaryReader(std::string_view file, const Trailer& trailer)
        : file_{file}, trailer_{trailer}, budget_{file.size() * expansionLimit} {}

    std::optional<Value> read() {
        if (!charge(sizeof(Value)) || !add(trailer_.top)) return std::nullopt;
        while (!open_.empty()) {
            if (!step()) return std::nullopt;
        }
        return builder_.take();
    }

private:
    struct Level {
        Container container;
        /// The references that are left: a dictionary's keys (none for an array), and the values.
        std::string_view keys;
        std::string_view values;
    };

    bool charge(std::size_t bytes) {
        if (bytes > budget_) return false;
        budget_ -= bytes;
        return true;
    }

    std::uint64_t takeReference(std::string_view& references) const {
        const std::uint64_t reference = bigEndian(references.substr(0, trailer_.referenceSize));
        references.remove_prefix(trailer_.referenceSize);
        return reference;
    }

    std::optional<StoredObject> objectAt(std::uint64_t reference) const {
        if (reference >= trailer_.objects) return std::nullopt;
        const std::string_view objects = file_.substr(0, position(trailer_.offsets));
        const std::size_t entry = position(trailer_.offsets + reference * trailer_.offsetSize);
        const std::uint64_t offset = bigEndian(file_.substr(entry, trailer_.offsetSize));
        if (offset < magic.size() || offset >= objects.size()) return std::nullopt;
        const std::string_view object = objects.substr(position(offset));
        const unsigned marker = static_cast<unsigned char>(object.front());
        return StoredObject{marker >> 4, marker & 0x0FU, object.substr(1)};
    }

    bool step() {
        Level& level = open_.back();
        if (level.values.empty()) {
            const Container container = level.container;
            open_.pop_back();
            return builder_.close(container);
        }
        const std::uint64_t value = takeReference(level.values);
        return (level.keys.empty() || addKey(takeReference(level.keys))) && add(value);
    }

    bool addKey(std::uint64_t reference) {
        const auto object = objectAt(reference);
        auto key = object ? stringOf(*object) : std::nullopt;
        return key && charge(heapBytes(*key)) && builder_.addKey(*std::move(key));
    }

    bool add(std::uint64_t reference) {
        const auto object = objectAt(reference);
        if (!object) return false;
        switch (object->kind) {
            case 0x0:
                return addFlag(*object);
            case 0x1:
                return addValue(integerOf(*object));
            case 0x2:
                return addValue(realOf(*object));
            case 0x3:
                return addValue(dateOf(*object));
            case 0x4:
                return addData(*object);
            case 0x5:
            case 0x6:
                return addString(*object);
            case 0xA:
                return open(*object, Container::array);
            case 0xD:
                return open(*object, Container::dictionary);
            default:
                return false;
        }
    }

    bool addFlag(StoredObject object) {
        return (object.info == 8 || object.info == 9) && builder_.add(object.info == 9);
    }

    bool addValue(std::optional<Value> value) { return value && builder_.add(*std::move(value)); }

    bool addData(StoredObject object) {
        const auto size = takeCount(object, 1);
        if (!size) return false;
        Data data{std::string{takeBytes(object, *size)}};
        return charge(heapBytes(data.bytes)) && builder_.add(std::move(data));
    }

    bool addString(StoredObject object) {
        auto text = stringOf(object);
        return text && charge(heapBytes(*text)) && builder_.add(*std::move(text));
    }

    bool open(StoredObject object, Container container) {
        const bool isDictionary = container == Container::dictionary;
        const std::size_t size = trailer_.referenceSize;
        const auto count = takeCount(object, isDictionary ? 2 * size : size);
        if (!count || !charge(*count * (isDictionary ? sizeof(Entry) : sizeof(Value))))
            return false;
        const std::string_view keys = takeBytes(object, isDictionary ? *count * size : 0);
        open_.push_back({container, keys, takeBytes(object, *count * size)});
        return builder_.open(container, *count);
    }

    std::string_view file_;
    Trailer trailer_;
    /// Bytes of memory that are left.
    std::size_t budget_;
    ValueBuilder builder_;
    std::vector<Level> open_;
};

}  // namespace

std::optional<Value> readBinaryPropertyList(std::string_view bytes) {
    const auto trailer = trailerOf(bytes);
    if (!trailer) return std::nullopt;
    return BinaryReader{bytes, *trailer}.read();
}

}  // namespace quillet::standin
