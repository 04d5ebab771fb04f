// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "platform/standin/plist/large_pages.h"
#include "platform/standin/plist/plain_text.h"
#include "platform/standin/plist/property_list.h"
#include "platform/standin/plist/stored_object.h"
#include "platform/standin/plist/tape_builder.h"
#include "platform/standin/plist/value_on_tape.h"

namespace quillet::standin {
namespace {

using Enclosure = TapeBuilder::Enclosure;

/// file    = "bplist0" version object… offsets trailer
/// trailer = 6 bytes unused, offset size (1), reference size (1), number of objects (8),
///           top object (8), position of the offsets (8)
struct Trailer {
    std::size_t offsetSize;
    std::size_t referenceSize;
    std::uint64_t top;
    // No larger than the file, which lies in memory.
    std::size_t objects;
    std::size_t offsets;
};

constexpr std::string_view magic = "bplist0";
constexpr std::size_t headerSize = 8;

std::optional<Trailer> trailerOf(std::string_view file) {
    if (file.size() < headerSize + trailerSize || !file.starts_with(magic)) return std::nullopt;
    const std::size_t end = file.size() - trailerSize;
    const std::string_view bytes = file.substr(end);
    const std::size_t offsetSize = static_cast<unsigned char>(bytes[6]);
    const std::size_t referenceSize = static_cast<unsigned char>(bytes[7]);
    const std::uint64_t objects = bigEndian(bytes.substr(8, 8));
    const std::uint64_t top = bigEndian(bytes.substr(16, 8));
    const std::uint64_t offsets = bigEndian(bytes.substr(24));
    const auto isSize = [](std::size_t size) { return size >= 1 && size <= 16; };
    if (!isSize(offsetSize) || !isSize(referenceSize)) return std::nullopt;
    // The offsets lie between the objects and the trailer, and nothing else does.
    if (offsets > end || (end - offsets) % offsetSize != 0) return std::nullopt;
    if (objects != (end - offsets) / offsetSize) return std::nullopt;
    const auto reaches = [](std::size_t size, std::uint64_t number) {
        return size >= sizeof number || number >> (8 * size) == 0;
    };
    if (!reaches(referenceSize, objects)) return std::nullopt;
    if (!reaches(offsetSize, offsets)) return std::nullopt;
    return Trailer{offsetSize, referenceSize, top, static_cast<std::size_t>(objects),
                   static_cast<std::size_t>(offsets)};
}

/// Goes through the objects from the top one, depth first. Texts that references share are shared;
/// containers are written out for each of them. Every reference is charged what it takes, so that
/// neither time nor memory can outgrow the limit.
class BinaryReader {
public:
    BinaryReader(std::string file, const Trailer& trailer)
        : tape_{std::make_shared<Tape>(std::move(file))},
          file_{tape_->file()},
          trailer_{trailer},
          referenceAt_{trailer.referenceSize},
          offsetAt_{trailer.offsetSize},
          budget_{budgetFor(file_.size(), trailer.objects)},
          builder_{tape_->nodes, Counts::first} {
        reserveLargePages(texts_, trailer.objects);
        texts_.resize(trailer.objects);
    }

    std::optional<Value> read() {
        reserveLargePages(tape_->nodes, trailer_.objects + trailer_.objects / 4);
        if (!add(trailer_.top)) return std::nullopt;
        while (!open_.empty()) {
            if (!step()) return std::nullopt;
        }
        return valueAt(tape_, tape_->nodes.front());
    }

    Fault fault() const { return fault_; }

private:
    struct Level {
        Enclosure enclosure;
        /// The references that are left: a dictionary's keys (none for an array), and the values.
        std::string_view keys;
        std::string_view values;
    };

    /// What a node may take while its row grows: old places and twice as many new ones.
    static constexpr std::size_t nodeCharge = 3 * sizeof(Node);

    /// What the limit leaves beside the file and its table of texts.
    static std::size_t budgetFor(std::size_t size, std::size_t objects) {
        return memoryLimit(size) - 2 * size - objects * nodeCharge;
    }

    bool fail(const char* reason) {
        if (*fault_.reason == '\0') fault_.reason = reason;
        return false;
    }

    bool charge(std::size_t bytes) {
        if (bytes > budget_) return fail("more shared parts than the size of the file allows");
        budget_ -= bytes;
        return true;
    }

    /// Eight bytes can be read wherever a number begins: the trailer comes after all of them.
    std::uint64_t takeReference(std::string_view& references) const {
        const auto reference = referenceAt_.at(references.data());
        references.remove_prefix(trailer_.referenceSize);
        return reference;
    }

    std::optional<StoredObject> objectAt(std::uint64_t reference) {
        fault_.offset = trailer_.offsets;
        if (reference >= trailer_.objects) return std::nullopt;
        const std::size_t entry =
            trailer_.offsets + static_cast<std::size_t>(reference) * trailer_.offsetSize;
        const std::uint64_t offset = offsetAt_.at(file_.data() + entry);
        fault_.offset = entry;
        if (offset < headerSize || offset >= trailer_.offsets) return std::nullopt;
        fault_.offset = static_cast<std::size_t>(offset);
        const unsigned marker = static_cast<unsigned char>(file_[fault_.offset]);
        const std::string_view rest =
            file_.substr(fault_.offset + 1, trailer_.offsets - fault_.offset - 1);
        return StoredObject{static_cast<Marker>(marker >> 4), marker & 0x0FU, rest};
    }

    bool step() {
        Level& level = open_.back();
        if (level.values.empty()) {
            const Enclosure enclosure = level.enclosure;
            open_.pop_back();
            return builder_.close(enclosure) || fail(builder_.refusal());
        }
        const std::uint64_t value = takeReference(level.values);
        return (level.keys.empty() || addKey(takeReference(level.keys))) && add(value);
    }

    /// A key may be compared with many others: it is charged as if it were a copy.
    bool addKey(std::uint64_t reference) {
        const auto object = objectAt(reference);
        const Node* const key = object ? textOf(*object, reference) : nullptr;
        if (key == nullptr || key->kind != Kind::string) return fail("a key that is no string");
        return charge(nodeCharge + key->size) &&
               (builder_.addKey(*key) || fail(builder_.refusal()));
    }

    bool add(std::uint64_t reference) {
        const auto object = objectAt(reference);
        if (!object) return fail("a reference to no object");
        if (!charge(nodeCharge)) return false;
        if (object->marker == Marker::array) return open(*object, Enclosure::array);
        if (object->marker == Marker::dictionary) return open(*object, Enclosure::dictionary);
        if (const Node* const text = textOf(*object, reference)) return builder_.add(*text);
        const auto value = singleIn(*object);
        return value ? builder_.add(*value) : fail("an object that is none, or cut short");
    }

    /// The node of a string or of data, which all references to it share; null for other objects.
    const Node* textOf(const StoredObject& object, std::uint64_t reference) {
        Node& text = texts_[static_cast<std::size_t>(reference)];
        if (text.kind == Kind::string || text.kind == Kind::data) return &text;
        const auto stored = textIn(object);
        if (!stored) return nullptr;
        // Texts may overlap: looking through them all must not take too long.
        if (stored->kind == Kind::string && !charge(stored->bytes.size())) return nullptr;
        const bool isBytes = stored->kind == Kind::string && !stored->isUTF16;
        if (isBytes && isPlainASCII(stored->bytes))
            return &(text = stringNode(stored->bytes, true));
        text = textNode(stored->kind, stored->bytes);
        if (text.kind == Kind::data) return &text;
        std::string decoded;
        if (!decode(*stored, decoded)) return &text;
        // The tape takes memory in ever larger pieces.
        if (!charge(2 * decoded.size())) return nullptr;
        text = textNode(Kind::string, tape_->keep(decoded));
        return &text;
    }

    bool open(StoredObject object, Enclosure enclosure) {
        const bool isDictionary = enclosure == Enclosure::dictionary;
        const std::size_t size = trailer_.referenceSize;
        const auto count = takeCount(object, isDictionary ? 2 * size : size);
        if (!count) return fail("a container that is cut short");
        const std::string_view keys = takeBytes(object, isDictionary ? *count * size : 0);
        open_.push_back({enclosure, keys, takeBytes(object, *count * size)});
        return builder_.open(enclosure) || fail(builder_.refusal());
    }

    std::shared_ptr<Tape> tape_;
    std::string_view file_;
    Trailer trailer_;
    NumberReader referenceAt_;
    NumberReader offsetAt_;
    /// Bytes of memory that are left.
    std::size_t budget_;
    /// By object: strings and data that a reference has been followed to.
    std::vector<Node> texts_;
    TapeBuilder builder_;
    std::vector<Level> open_;
    Fault fault_;
};

}  // namespace

std::optional<Value> readBinaryPropertyList(std::string bytes, Fault* fault) {
    const auto trailer = bytes.size() > maxFileSize ? std::nullopt : trailerOf(bytes);
    if (!trailer) {
        const std::size_t place = std::max(bytes.size(), trailerSize) - trailerSize;
        if (fault != nullptr) *fault = {place, "a trailer that does not fit the file"};
        return std::nullopt;
    }
    BinaryReader reader{std::move(bytes), *trailer};
    auto value = reader.read();
    if (!value && fault != nullptr) *fault = reader.fault();
    return value;
}

}  // namespace quillet::standin
