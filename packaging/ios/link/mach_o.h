// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstdint>

/// The records of 32-bit Mach-O files, little-endian, as they lie in the file.
namespace quillet::mach_o {

inline constexpr std::uint32_t pointerSize = 4;

struct Header {
    static constexpr std::uint32_t thisMagic = 0xFEEDFACE;
    static constexpr std::uint32_t arm = 12, v7 = 9;
    static constexpr std::uint32_t object = 1, bundle = 8;
    static constexpr std::uint32_t noUndefined = 1, forDynamicLinker = 4, twoLevel = 0x80;

    std::uint32_t magic, cpu, cpuVariant, type, commandCount, commandsSize, flags;
};

/// What every load command begins with; `size` counts these two fields too.
struct Command {
    static constexpr std::uint32_t segment = 0x1, symbols = 0x2, dynamicSymbols = 0xB,
                                   library = 0xC, uuid = 0x1B, encryption = 0x21,
                                   dyldInfoOnly = 0x80000022, minimumIOS = 0x25,
                                   functionStarts = 0x26, dataInCode = 0x29,
                                   weakLibrary = 0x80000018;

    std::uint32_t kind, size;
};

using Name = std::array<char, 16>;

struct SegmentCommand {
    static constexpr std::uint32_t read = 1, write = 2, execute = 4;

    Command command;
    Name name;
    std::uint32_t address, size, fileOffset, fileSize;
    std::uint32_t highestProtection, protection, sectionCount, flags;
};

struct SectionRecord {
    /// Types, in the flags' lowest byte, and attributes.
    static constexpr std::uint32_t regular = 0, zeroFilled = 1, strings = 2, pointers = 5,
                                   importedPointers = 6, stubs = 8, coalesced = 11;
    static constexpr std::uint32_t instructions = 0x80000400;

    Name name, segmentName;
    std::uint32_t address, size, fileOffset, alignmentExponent;
    std::uint32_t relocationOffset, relocationCount, flags;
    /// Where the section's part of the indirect symbols begins, and the size of a stub.
    std::uint32_t firstIndirect, stubSize;
};

/// A part of the file.
struct Range {
    std::uint32_t offset, size;
};

struct RangeCommand {
    Command command;
    Range range;
};

struct DyldInfoCommand {
    Command command;
    Range rebases, binds, weakBinds, lazyBinds, exports;
};

struct SymbolsCommand {
    Command command;
    std::uint32_t symbolOffset, symbolCount;
    Range names;
};

struct DynamicSymbolsCommand {
    Command command;
    std::uint32_t firstLocal, localCount, firstDefined, definedCount, firstUndefined,
        undefinedCount;
    std::array<std::uint32_t, 6> unused;
    std::uint32_t indirectOffset, indirectCount;
    std::array<std::uint32_t, 4> relocations;
};

struct EncryptionCommand {
    Command command;
    Range encrypted;
    std::uint32_t method;
};

struct VersionCommand {
    Command command;
    std::uint32_t version, sdk;
};

/// The name follows, with a zero byte, and fills the command with more of them.
struct LibraryCommand {
    Command command;
    std::uint32_t nameOffset, time, currentVersion, compatibilityVersion;
};

struct UuidCommand {
    Command command;
    std::array<std::uint8_t, 16> uuid;
};

struct SymbolRecord {
    /// Of the type: a debugger's, private external, what it is (the next two), external.
    static constexpr std::uint8_t debug = 0xE0, hidden = 0x10, kind = 0x0E, inSection = 0x0E,
                                  undefined = 0, external = 1;
    static constexpr std::uint16_t thumb = 0x08, weakImport = 0x40, weakDefinition = 0x80;

    std::uint32_t name;
    std::uint8_t type, section;
    std::uint16_t description;
    std::uint32_t value;
};

struct DataInCode {
    std::uint32_t offset;
    std::uint16_t length, kind;
};

}  // namespace quillet::mach_o
