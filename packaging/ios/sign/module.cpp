// SPDX-License-Identifier: MIT
#include "packaging/ios/sign/module.h"

#include <algorithm>
#include <utility>

namespace quillet::sign {

// The header and the load commands behind it, all numbers little-endian:
//
//     header    magic · processor · its kind · file type · commands · their bytes · flags [· 0]
//     command   kind · bytes, these 8 included · …
//     segment   … · name (16) · address · size there · place in the file · size there
//               · 2 protections · sections · flags, then the sections
//     section   name (16) · segment's name (16) · address · size · place in the file · …
//     signature … · place in the file · size there
//
// Addresses and sizes in segments and sections are words of the processor; all else has 4 bytes.
struct Format {
    std::size_t headerSize;
    std::uint32_t segmentKind;
    std::size_t wordSize;
    // Within the command of a segment.
    std::size_t memorySize;
    std::size_t fileOffset;
    std::size_t fileSize;
    std::size_t sectionCount;
    std::size_t sections;
    // Within a section.
    std::size_t sectionSize;
    std::size_t sectionOffset;
};

namespace {

constexpr Format format32 = {28, 0x01, 4, 28, 32, 36, 48, 56, 68, 40};
constexpr Format format64 = {32, 0x19, 8, 32, 40, 48, 64, 72, 80, 48};

constexpr std::uint32_t magic32 = 0xfeedface;
constexpr std::uint32_t magic64 = 0xfeedfacf;
constexpr std::size_t processorPlace = 4;
constexpr std::size_t fileTypePlace = 12;
constexpr std::size_t commandCountPlace = 16;
constexpr std::size_t commandBytesPlace = 20;

constexpr std::uint64_t loadableBundle = 8;
constexpr std::uint64_t arm = 0x0c;
constexpr std::uint64_t arm64 = 0x0100000c;
constexpr std::uint64_t x86_64 = 0x01000007;

constexpr std::uint32_t signatureKind = 0x1d;
constexpr std::size_t signatureCommandSize = 16;
constexpr std::size_t dataOffset = 8;
constexpr std::size_t dataSize = 12;
constexpr std::size_t signatureAlignment = 16;

std::uint64_t littleEndian(std::string_view bytes) {
    std::uint64_t value = 0;
    for (std::size_t i = bytes.size(); i-- > 0;) {
        value = value << 8 | static_cast<std::uint8_t>(bytes[i]);
    }
    return value;
}

std::uint64_t roundedUp(std::uint64_t value, std::uint64_t unit) {
    return (value + unit - 1) / unit * unit;
}

const Format& formatOf(std::string_view bytes) {
    const std::uint64_t magic = littleEndian(bytes.substr(0, 4));
    if (magic == magic32) return format32;
    if (magic == magic64) return format64;
    throw Refusal("is no Mach-O file for one little-endian processor");
}

std::uint64_t pageSizeFor(std::uint64_t processor) {
    switch (processor) {
        case arm64:
            return 16384;
        case arm:
        case x86_64:
            return 4096;
        default:
            throw Refusal("is for a processor that is neither arm, arm64 nor x86_64");
    }
}

}  // namespace

Module::Module(std::string bytes)
    : bytes_(std::move(bytes)),
      format_(formatOf(bytes_)),
      pageSize_(pageSizeFor(number(processorPlace))),
      firstContent_(bytes_.size()) {
    if (bytes_.size() > UINT32_MAX) throw Refusal("has more bytes than a signature covers");
    if (number(fileTypePlace) != loadableBundle) throw Refusal("is no loadable bundle");
    readHeader();
    checkSegments();
    if (signature_ != 0) {
        takeSignatureOff();
    } else {
        bytes_.resize(roundedUp(bytes_.size(), signatureAlignment));
        addSignatureCommand();
    }
}

std::uint64_t Module::textSize() const { return word(text_ + format_.fileSize); }

void Module::announceSignature(std::uint32_t size) {
    const std::uint64_t linkEditSize = bytes_.size() + size - word(linkEdit_ + format_.fileOffset);
    put(signature_ + dataOffset, bytes_.size());
    put(signature_ + dataSize, size);
    put(linkEdit_ + format_.fileSize, linkEditSize, format_.wordSize);
    put(linkEdit_ + format_.memorySize, roundedUp(linkEditSize, pageSize_), format_.wordSize);
}

void Module::readHeader() {
    const std::size_t end = commandsEnd();
    if (end > bytes_.size()) throw Refusal("ends within its load commands");
    std::size_t at = format_.headerSize;
    for (std::uint64_t count = number(commandCountPlace); count > 0; --count) {
        const std::uint64_t size = number(at + 4);
        if (size < 8 || size > end - at) throw Refusal("has a load command of a wrong size");
        readCommand(at, static_cast<std::uint32_t>(number(at)));
        at += size;
    }
    if (at != end) throw Refusal("has load commands of another size than its header says");
}

void Module::readCommand(std::size_t at, std::uint32_t kind) {
    if (kind == format_.segmentKind) readSegment(at);
    if (kind != signatureKind) return;
    if (signature_ != 0) throw Refusal("has two signatures");
    signature_ = at;
}

void Module::readSegment(std::size_t at) {
    const std::uint64_t count = number(at + format_.sectionCount);
    if (number(at + 4) != format_.sections + count * format_.sectionSize) {
        throw Refusal("has a segment of a wrong size");
    }
    const std::string_view name = bytes_.c_str() + at + 8;
    if (name == "__TEXT") text_ = at;
    if (name == "__LINKEDIT") linkEdit_ = at;
    const auto mind = [&](std::uint64_t place) {
        if (place != 0) firstContent_ = std::min(firstContent_, place);
    };
    mind(word(at + format_.fileOffset));
    for (std::uint64_t i = 0; i < count; ++i) {
        mind(number(at + format_.sections + i * format_.sectionSize + format_.sectionOffset));
    }
}

void Module::checkSegments() const {
    if (text_ == 0 || word(text_ + format_.fileOffset) != 0) {
        throw Refusal("does not begin with a segment __TEXT");
    }
    if (linkEdit_ == 0 || word(linkEdit_ + format_.fileOffset) > bytes_.size() ||
        word(linkEdit_ + format_.fileSize) !=
            bytes_.size() - word(linkEdit_ + format_.fileOffset)) {
        throw Refusal("does not end with a segment __LINKEDIT");
    }
}

void Module::takeSignatureOff() {
    const std::uint64_t start = number(signature_ + dataOffset);
    if (start % signatureAlignment != 0 || start < word(linkEdit_ + format_.fileOffset) ||
        start + number(signature_ + dataSize) != bytes_.size()) {
        throw Refusal("does not end with its signature");
    }
    bytes_.resize(start);
}

void Module::addSignatureCommand() {
    signature_ = commandsEnd();
    if (firstContent_ < signature_ + signatureCommandSize) {
        throw Refusal("has no room for the load command of a signature");
    }
    put(signature_, signatureKind);
    put(signature_ + 4, signatureCommandSize);
    put(commandCountPlace, number(commandCountPlace) + 1);
    put(commandBytesPlace, number(commandBytesPlace) + signatureCommandSize);
}

std::uint64_t Module::number(std::size_t at, std::size_t width) const {
    if (bytes_.size() < width || at > bytes_.size() - width) throw Refusal("is too short");
    return littleEndian(std::string_view(bytes_).substr(at, width));
}

void Module::put(std::size_t at, std::uint64_t value, std::size_t width) {
    for (std::size_t i = 0; i < width; ++i) bytes_.at(at + i) = static_cast<char>(value >> 8 * i);
}

std::uint64_t Module::word(std::size_t at) const { return number(at, format_.wordSize); }

std::size_t Module::commandsEnd() const { return format_.headerSize + number(commandBytesPlace); }

}  // namespace quillet::sign
