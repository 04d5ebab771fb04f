// SPDX-License-Identifier: MIT
#include "tests/artefacts/signed_module.h"

#include <openssl/sha.h>

#include <algorithm>
#include <cstdint>
#include <sstream>

namespace quillet::test {
namespace {

enum class Order { little, big };

constexpr std::size_t pageSize = 4096;  // of the signature, on every processor

std::size_t roundedUp(std::size_t value, std::size_t unit) {
    return (value + unit - 1) / unit * unit;
}

std::string sha1(const std::string& bytes) {
    std::string digest(SHA_DIGEST_LENGTH, '\0');
    SHA1(reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size(),
         reinterpret_cast<unsigned char*>(digest.data()));
    return digest;
}

std::string sha256(const std::string& bytes) {
    std::string digest(SHA256_DIGEST_LENGTH, '\0');
    SHA256(reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size(),
           reinterpret_cast<unsigned char*>(digest.data()));
    return digest;
}

/// Compares field by field. After a wrong field it goes on with what the field should have been.
class Reader {
public:
    Reader(const std::string& module, const std::string& identifier)
        : module_(module),
          identifier_(identifier),
          wide_((number(4, 4, Order::little) & 0x01000000) != 0),
          word_(wide_ ? 8 : 4) {}

    Reading read() {
        readHeader();
        readCommands();
        compare("count of signature commands", signatures_, 1);
        readSignature();
        return std::move(reading_);
    }

private:
    std::size_t number(std::size_t at, std::size_t size, Order order) const {
        if (at > module_.size() || module_.size() - at < size) return 0;
        std::string bytes = module_.substr(at, size);
        if (order == Order::little) std::ranges::reverse(bytes);
        std::size_t value = 0;
        for (const char byte : bytes) value = value << 8 | static_cast<std::uint8_t>(byte);
        return value;
    }

    std::size_t little(std::size_t at, std::size_t size = 4) const {
        return number(at, size, Order::little);
    }

    void compare(const std::string& name, std::size_t found, std::size_t expected) {
        if (found == expected) return;
        std::ostringstream line;
        line << name << std::hex << ": " << found << " in place of " << expected;
        reading_.faults.push_back(line.str());
    }

    void expect(const std::string& name, std::size_t at, std::size_t size, Order order,
                std::size_t value) {
        reading_.fields.push_back({name, at, size});
        compare(name, number(at, size, order), value);
    }

    void expectBytes(const std::string& name, std::size_t at, const std::string& bytes) {
        reading_.fields.push_back({name, at, bytes.size()});
        if (at + bytes.size() > module_.size() || module_.compare(at, bytes.size(), bytes) != 0) {
            reading_.faults.push_back(name);
        }
    }

    void readHeader() {
        expect("magic", 0, 4, Order::little, wide_ ? 0xfeedfacf : 0xfeedface);
        expect("file type", 12, 4, Order::little, 8);
        processorPage_ = little(4) == 0x0100000c ? 16384 : 4096;
    }

    void readCommands() {
        std::size_t at = wide_ ? 32 : 28;
        const std::size_t end = std::min(at + little(20), module_.size());
        while (at < end) {
            const std::size_t kind = little(at);
            if (kind == (wide_ ? 0x19 : 0x01)) readSegment(at);
            if (kind == 0x25) readSystems(at);
            if (kind == 0x1d) readSignatureCommand(at);
            at += std::max<std::size_t>(little(at + 4), 8);
        }
        compare("end of the load commands", at, end);
        compare("end of the file", fileEnd_, module_.size());
    }

    /// Where the contents of a segment's sections end: in memory and in the file.
    struct Contents {
        std::size_t memoryEnd = 0;
        std::size_t fileEnd = 0;
    };

    Contents sectionsOf(std::size_t segment) const {
        Contents contents;
        const std::size_t size = wide_ ? 80 : 68;
        const std::size_t first = segment + (wide_ ? 72 : 56);
        const std::size_t count = std::min<std::size_t>(little(first - 8), 64);
        for (std::size_t at = first; at < first + count * size; at += size) {
            const std::size_t length = little(at + 32 + word_, word_);
            const std::size_t place = little(at + 32 + 2 * word_);
            contents.memoryEnd = std::max(contents.memoryEnd, little(at + 32, word_) + length);
            if (place != 0) contents.fileEnd = std::max(contents.fileEnd, place + length);
        }
        return contents;
    }

    /// Segments follow each other in memory and in the file, each to the end of a page.
    void readSegment(std::size_t at) {
        const std::string name = module_.c_str() + at + 8;
        const Contents contents = sectionsOf(at);
        const bool last = name == "__LINKEDIT";
        const std::size_t inFile = last ? module_.size() - fileEnd_
                                        : roundedUp(contents.fileEnd, processorPage_) - fileEnd_;
        const std::size_t inMemory =
            roundedUp(std::max(inFile, last ? 0 : contents.memoryEnd - memoryEnd_), processorPage_);
        const std::size_t protection = name == "__TEXT" ? 5 : name == "__DATA" ? 3 : 1;
        const std::size_t behind = at + 24 + 4 * word_;
        expect(name + " address", at + 24, word_, Order::little, memoryEnd_);
        expect(name + " memory size", at + 24 + word_, word_, Order::little, inMemory);
        expect(name + " place", at + 24 + 2 * word_, word_, Order::little, fileEnd_);
        expect(name + " size", at + 24 + 3 * word_, word_, Order::little, inFile);
        expect(name + " greatest protection", behind, 4, Order::little, protection);
        expect(name + " first protection", behind + 4, 4, Order::little, protection);
        if (name == "__TEXT") textSize_ = inFile;
        memoryEnd_ += inMemory;
        fileEnd_ += inFile;
    }

    void readSystems(std::size_t at) {
        expect("first system", at + 8, 4, Order::little, 0x00070000);
        expect("sdk", at + 12, 4, Order::little, 0x00070000);
    }

    /// Where a list of blobs begins that ends with the file; what the command says where none does.
    std::size_t signatureBy(std::size_t said) const {
        for (std::size_t at = 0; at < module_.size(); at += 16) {
            if (number(at, 4, Order::big) == 0xfade0cc0 &&
                at + number(at + 4, 4, Order::big) == module_.size()) {
                return at;
            }
        }
        return said;
    }

    void readSignatureCommand(std::size_t at) {
        ++signatures_;
        start_ = signatureBy(roundedUp(little(at + 8), 16));
        expect("place of the signature", at + 8, 4, Order::little, start_);
        expect("size of the signature", at + 12, 4, Order::little, module_.size() - start_);
    }

    void big(const std::string& name, std::size_t at, std::size_t value, std::size_t size = 4) {
        expect(name, at, size, Order::big, value);
    }

    std::size_t directorySize(std::size_t hashSize) const {
        return 88 + identifier_.size() + 1 +
               hashSize * (2 + roundedUp(start_, pageSize) / pageSize);
    }

    void readSignature() {
        const std::size_t requirements = 36 + directorySize(20);
        const std::size_t alternate = requirements + 12;
        big("signature: magic", start_, 0xfade0cc0);
        big("signature: size", start_ + 4, alternate + directorySize(32));
        big("signature: blobs", start_ + 8, 3);
        big("signature: slot of the first directory", start_ + 12, 0);
        big("signature: place of the first directory", start_ + 16, 36);
        big("signature: slot of the requirements", start_ + 20, 2);
        big("signature: place of the requirements", start_ + 24, requirements);
        big("signature: slot of the second directory", start_ + 28, 0x1000);
        big("signature: place of the second directory", start_ + 32, alternate);
        compare("signature: end", start_ + alternate + directorySize(32), module_.size());
        readDirectory("SHA-1: ", start_ + 36, 1, 20, sha1);
        expectBytes("requirements", start_ + requirements, requirements_);
        readDirectory("SHA-256: ", start_ + alternate, 2, 32, sha256);
    }

    void readDirectory(const std::string& of, std::size_t at, std::size_t kind,
                       std::size_t hashSize, std::string (*hash)(const std::string&)) {
        const std::size_t firstHash = 88 + identifier_.size() + 1 + 2 * hashSize;
        big(of + "magic", at, 0xfade0c02);
        big(of + "size", at + 4, directorySize(hashSize));
        big(of + "version", at + 8, 0x00020400);
        big(of + "flags, ad hoc", at + 12, 2);
        big(of + "place of the hashes", at + 16, firstHash);
        big(of + "place of the identifier", at + 20, 88);
        big(of + "special slots", at + 24, 2);
        big(of + "pages", at + 28, roundedUp(start_, pageSize) / pageSize);
        big(of + "covered bytes", at + 32, start_);
        big(of + "bytes of a hash", at + 36, hashSize, 1);
        big(of + "kind of hash", at + 37, kind, 1);
        big(of + "platform", at + 38, 0, 1);
        big(of + "page size", at + 39, 12, 1);
        expectBytes(of + "what is not used", at + 40, std::string(24, '\0'));
        big(of + "place of the code", at + 64, 0, 8);
        big(of + "size of the code", at + 72, textSize_, 8);
        big(of + "flags of the code", at + 80, 0, 8);
        expectBytes(of + "identifier", at + 88, identifier_ + '\0');
        expectBytes(of + "hash of the requirements", at + firstHash - 2 * hashSize,
                    hash(requirements_));
        expectBytes(of + "hash of the property list, none", at + firstHash - hashSize,
                    std::string(hashSize, '\0'));
        for (std::size_t page = 0; page * pageSize < start_; ++page) {
            const std::size_t from = page * pageSize;
            expectBytes(of + "hash of page " + std::to_string(page),
                        at + firstHash + page * hashSize,
                        hash(module_.substr(from, std::min(pageSize, start_ - from))));
        }
    }

    const std::string& module_;
    const std::string& identifier_;
    const std::string requirements_{"\xfa\xde\x0c\x01\0\0\0\x0c\0\0\0\0", 12};
    bool wide_;
    std::size_t word_;
    std::size_t processorPage_ = 0;
    std::size_t memoryEnd_ = 0;
    std::size_t fileEnd_ = 0;
    std::size_t textSize_ = 0;
    std::size_t signatures_ = 0;
    std::size_t start_ = 0;
    Reading reading_;
};

}  // namespace

Reading readSignedModule(const std::string& module, const std::string& identifier) {
    return Reader(module, identifier).read();
}

}  // namespace quillet::test
