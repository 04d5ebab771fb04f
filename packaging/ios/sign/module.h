// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

namespace quillet::sign {

struct Format;

/// A file that this tool does not sign. Its text says why.
class Refusal : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// A loadable module for one processor, as much of it as a signature touches: a thin little-endian
/// Mach-O file of 32 or 64 bits that ends with its segment __LINKEDIT. The signature is the end of
/// that segment and of the file.
class Module {
public:
    /// Takes the bytes of a file, takes a signature off that they end with, and makes room for the
    /// next. Throws Refusal for any other file, and for a header without room for the load command
    /// that a signature needs.
    explicit Module(std::string bytes);

    /// The bytes that a signature covers: the whole file, up to the place for the signature.
    std::string_view code() const { return bytes_; }

    /// How many bytes the segment __TEXT has in the file, counted from its start.
    std::uint64_t textSize() const;

    /// Enters into the header, which is part of code(), that `size` bytes of signature follow.
    void announceSignature(std::uint32_t size);

private:
    void readHeader();
    void readCommand(std::size_t at, std::uint32_t kind);
    void readSegment(std::size_t at);
    void checkSegments() const;
    void takeSignatureOff();
    void addSignatureCommand();

    std::uint64_t number(std::size_t at, std::size_t width = 4) const;
    void put(std::size_t at, std::uint64_t value, std::size_t width = 4);
    std::uint64_t word(std::size_t at) const;
    std::size_t commandsEnd() const;

    std::string bytes_;
    const Format& format_;
    std::uint64_t pageSize_;
    std::uint64_t firstContent_;  // the nearest byte behind the header that a segment uses
    std::size_t text_ = 0;        // where a load command lies, 0 for one that is not there
    std::size_t linkEdit_ = 0;
    std::size_t signature_ = 0;
};

}  // namespace quillet::sign
