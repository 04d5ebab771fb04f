// SPDX-License-Identifier: MIT
#include "platform/standin/plist/writer_binary.h"

#include <bit>
#include <cstdint>
#include <limits>
#include <string_view>

#include "platform/standin/plist/object_table.h"
#include "platform/standin/plist/stored_object.h"
#include "platform/standin/plist/utf8.h"

namespace quillet::standin {
namespace {

constexpr std::string_view header = "bplist00";

/// How many bytes a number is stored in: 1, 2, 4 or 8.
std::size_t widthOf(std::uint64_t number) {
    return std::bit_ceil((static_cast<std::size_t>(std::bit_width(number)) + 7) / 8);
}

/// From this character on, UTF-16 takes two units.
constexpr std::uint32_t firstOfPairs = 0x10000;

std::size_t unitsIn(std::string_view text) {
    std::size_t units = 0;
    while (!text.empty()) units += takeCharacter(text) < firstOfPairs ? 1 : 2;
    return units;
}

/// The sink that only counts.
class ByteCounter {
public:
    void put(std::string_view bytes) { size_ += bytes.size(); }
    void putNumber(std::uint64_t /*number*/, std::size_t width) { size_ += width; }
    std::size_t size() const { return size_; }

private:
    std::size_t size_ = 0;
};

/// What writes, to where there is room for all that has been counted.
class ByteWriter {
public:
    explicit ByteWriter(char* next) : next_{next} {}

    void put(std::string_view bytes) { next_ += bytes.copy(next_, bytes.size()); }
    /// The lowest bytes of the number, the high one first.
    void putNumber(std::uint64_t number, std::size_t width) {
        for (std::size_t i = width; i-- > 0; number >>= 8) next_[i] = static_cast<char>(number);
        next_ += width;
    }
    const char* next() const { return next_; }

private:
    char* next_;
};

/// Puts an object's bytes into a sink. The same code measures and writes, so that the two agree.
/// stored_object.h has the bytes.
template <class Sink>
class ObjectWriter {
public:
    ObjectWriter(const ObjectTable& table, Sink& sink)
        : table_{table}, sink_{sink}, referenceSize_{widthOf(table.objects().size())} {}

    void write(const Node& node) {
        switch (node.kind) {
            case Kind::boolean:
                return putMarker(Marker::flag, node.integer != 0 ? 9 : 8);
            case Kind::integer:
                // Fewer than eight bytes have no sign.
                return putInteger(static_cast<std::uint64_t>(node.integer));
            case Kind::unsignedInteger:
                return putUnsigned(node.number);
            case Kind::real:
                return putReal(Marker::real, node.real);
            case Kind::date:
                return putReal(Marker::date, node.real);
            case Kind::uid:
                return putUID(node.number);
            case Kind::string:
                return putString(node.text());
            case Kind::data:
                putCounted(Marker::data, node.size);
                return sink_.put(node.text());
            case Kind::array:
                return putArray(node);
            case Kind::dictionary:
                return putDictionary(node);
        }
    }

private:
    void putMarker(Marker marker, std::size_t info) {
        sink_.putNumber(static_cast<std::uint64_t>(marker) << 4U | info, 1);
    }

    void putCounted(Marker marker, std::size_t count) {
        constexpr std::size_t countFollows = 15;
        if (count < countFollows) return putMarker(marker, count);
        putMarker(marker, countFollows);
        putInteger(count);
    }

    void putInteger(std::uint64_t number) {
        const std::size_t width = widthOf(number);
        putMarker(Marker::integer, static_cast<std::size_t>(std::countr_zero(width)));
        sink_.putNumber(number, width);
    }

    /// Eight bytes have a sign: what is beyond them takes sixteen.
    void putUnsigned(std::uint64_t number) {
        constexpr auto most = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
        if (number <= most) return putInteger(number);
        putMarker(Marker::integer, 4);
        sink_.putNumber(0, 8);
        sink_.putNumber(number, 8);
    }

    void putReal(Marker marker, double number) {
        putMarker(marker, 3);
        sink_.putNumber(std::bit_cast<std::uint64_t>(number), 8);
    }

    void putUID(std::uint64_t number) {
        const std::size_t width = widthOf(number);
        putMarker(Marker::uid, width - 1);
        sink_.putNumber(number, width);
    }

    void putString(std::string_view text) {
        if (isASCII(text)) {
            putCounted(Marker::ascii, text.size());
            return sink_.put(text);
        }
        putCounted(Marker::utf16, unitsIn(text));
        while (!text.empty()) putUnits(takeCharacter(text));
    }

    void putUnits(std::uint32_t character) {
        if (character < firstOfPairs) return sink_.putNumber(character, 2);
        sink_.putNumber(0xD800U + ((character - firstOfPairs) >> 10U), 2);
        sink_.putNumber(0xDC00U + (character & 0x3FFU), 2);
    }

    void putReference(const Node& node) { sink_.putNumber(table_.numberOf(node), referenceSize_); }

    void putArray(const Node& array) {
        putCounted(Marker::array, array.count);
        for (const Node* node = &array + 1; node != array.next(); node = node->next()) {
            putReference(*node);
        }
    }

    void putDictionary(const Node& dictionary) {
        putCounted(Marker::dictionary, dictionary.count);
        for (std::ptrdiff_t part = 0; part < 2; ++part) {
            for (const Node* key = &dictionary + 1; key != dictionary.next();
                 key = (key + 1)->next()) {
                putReference(key[part]);
            }
        }
    }

    const ObjectTable& table_;
    Sink& sink_;
    std::size_t referenceSize_;
};

/// Where what belongs in a file.
struct Layout {
    std::size_t objects;
    /// Position of the offsets.
    std::size_t offsets;
    std::size_t offsetSize;

    std::size_t trailer() const { return offsets + objects * offsetSize; }
    std::size_t size() const { return trailer() + trailerSize; }
};

Layout layoutOf(const ObjectTable& table) {
    ByteCounter counter;
    ObjectWriter writer{table, counter};
    for (const Node* const object : table.objects()) writer.write(*object);
    const std::size_t offsets = header.size() + counter.size();
    return {table.objects().size(), offsets, widthOf(offsets)};
}

/// The top object is the first one.
void putTrailer(ByteWriter out, const Layout& layout) {
    out.putNumber(layout.offsetSize, 7);
    out.putNumber(widthOf(layout.objects), 1);
    out.putNumber(layout.objects, 8);
    out.putNumber(0, 8);
    out.putNumber(layout.offsets, 8);
}

}  // namespace

std::optional<std::string> writeBinary(const Node& root, std::size_t limit) {
    const std::size_t forTable =
        ObjectTable::memoryFor(static_cast<std::size_t>(root.next() - &root));
    if (forTable > limit) return std::nullopt;
    const ObjectTable table{root};
    const Layout layout = layoutOf(table);
    if (layout.size() > limit - forTable) return std::nullopt;
    std::string file(layout.size(), '\0');
    ByteWriter objects{file.data()};
    ByteWriter offsets{file.data() + layout.offsets};
    objects.put(header);
    ObjectWriter writer{table, objects};
    for (const Node* const object : table.objects()) {
        offsets.putNumber(static_cast<std::uint64_t>(objects.next() - file.data()),
                          layout.offsetSize);
        writer.write(*object);
    }
    putTrailer(offsets, layout);
    return file;
}

}  // namespace quillet::standin
