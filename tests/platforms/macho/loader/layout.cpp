// SPDX-License-Identifier: MIT
#include "tests/platforms/macho/loader/layout.h"

#include <array>
#include <cstdio>
#include <string_view>

#include "platform/standin/runtime/module.h"

namespace quillet::macho {

namespace {

#if defined(__x86_64__)
constexpr std::uint32_t thisCPU = 0x01000007;
#elif defined(__aarch64__)
constexpr std::uint32_t thisCPU = 0x0100000C;
#elif defined(__arm__)
constexpr std::uint32_t thisCPU = 0xC;
#endif

// The file format's records, all little-endian, as they lie in the file. It has two forms, whose
// addresses are as wide as the processor's.

constexpr bool is64Bit = sizeof(void*) == 8;
using Word = std::uintptr_t;

struct Header {
    static constexpr std::uint32_t thisMagic = is64Bit ? 0xFEEDFACF : 0xFEEDFACE;
    static constexpr std::uint32_t bundle = 8;
    /// Behind the header, and unused.
    static constexpr std::size_t padding = is64Bit ? 4 : 0;

    std::uint32_t magic, cpu, cpuVariant, type, commandCount, commandsSize, flags;
};

struct Command {
    static constexpr std::uint32_t segment = is64Bit ? 0x19 : 0x1;
    static constexpr std::uint32_t dyldInfo = 0x80000022;
    static constexpr std::uint32_t library = 0xC;
    static constexpr std::uint32_t weakLibrary = 0x80000018;
    /// The loader must know a command that has this bit.
    static constexpr std::uint32_t required = 0x80000000;

    std::uint32_t kind, size;
};

struct SegmentCommand {
    static constexpr std::uint32_t writeProtection = 2;
    static constexpr std::uint32_t executeProtection = 4;

    std::array<char, 16> name;
    Word address, size, fileOffset, fileSize;
    std::uint32_t highestProtection, protection, sectionCount, flags;
};

struct SectionRecord {
    std::array<char, 16> name, segmentName;
    Word address, size;
    std::uint32_t fileOffset, alignment, relocationOffset, relocationCount, flags;
    std::array<std::uint32_t, is64Bit ? 3 : 2> reserved;

    /// Whether the section holds functions that run at loading or unloading, or variables of
    /// threads: what its type, the flags' lowest byte, says.
    bool needsMoreThanMapping() const {
        const std::uint32_t type = flags & 0xFF;
        return type == 0x9 || type == 0xA || type >= 0x11;
    }
};

struct LibraryCommand {
    /// From the command's beginning.
    std::uint32_t pathOffset;
    std::uint32_t time, version, compatibleVersion;
};

struct DyldInfo {
    struct Range {
        std::uint32_t offset, size;
    };
    Range rebases, binds, weakBinds, lazyBinds, exports;
};

[[noreturn]] void refuse(const char* what, std::uint32_t number) {
    std::array<char, 16> digits = {};
    std::snprintf(digits.data(), digits.size(), " 0x%X", number);
    throw standin::BundleError(std::string{"not supported: "} + what + digits.data());
}

class LayoutReader {
public:
    explicit LayoutReader(Bytes file) : file_{file} {}

    Layout read() {
        Reader reader{file_};
        const auto header = reader.take<Header>();
        if (header.magic != Header::thisMagic) refuse("file magic", header.magic);
        if (header.cpu != thisCPU) refuse("processor", header.cpu);
        if (header.type != Header::bundle) refuse("file type", header.type);
        reader.takeBytes(Header::padding);
        Reader commands{reader.takeBytes(header.commandsSize)};
        for (std::uint32_t i = 0; i < header.commandCount; ++i) readCommand(commands);
        if (layout_.segments.empty()) malformed("no segments");
        if (!hasDyldInfo_) malformed("no table of addresses to set");
        return std::move(layout_);
    }

private:
    void readCommand(Reader& commands) {
        const auto [kind, size] = commands.take<Command>();
        if (size < sizeof(Command)) malformed("a load command without a size");
        Reader content{commands.takeBytes(size - sizeof(Command))};
        switch (kind) {
            case Command::segment:
                return readSegment(content);
            case Command::dyldInfo:
                return readDyldInfo(content.take<DyldInfo>());
            case Command::library:
            case Command::weakLibrary:
                return readLibrary(content, kind == Command::weakLibrary);
            default:
                if ((kind & Command::required) != 0) refuse("load command", kind);
        }
    }

    void readSegment(Reader& content) {
        const auto segment = content.take<SegmentCommand>();
        if (segment.fileSize > segment.size) malformed("a segment larger in the file");
        layout_.segments.push_back({segment.address, segment.size,
                                    part(file_, segment.fileOffset, segment.fileSize),
                                    (segment.protection & SegmentCommand::writeProtection) != 0,
                                    (segment.protection & SegmentCommand::executeProtection) != 0});
        for (std::uint32_t i = 0; i < segment.sectionCount; ++i) {
            readSection(content.take<SectionRecord>());
        }
    }

    void readSection(const SectionRecord& section) {
        if (section.needsMoreThanMapping()) refuse("section type", section.flags & 0xFF);
        const std::string_view name{section.name.data(), section.name.size()};
        layout_.sections.push_back(
            {std::string{name.substr(0, name.find('\0'))}, section.address, section.size});
    }

    void readLibrary(Reader& content, bool isWeak) {
        const auto library = content.take<LibraryCommand>();
        constexpr std::size_t before = sizeof(Command) + sizeof(LibraryCommand);
        if (library.pathOffset < before) malformed("a library without a path");
        content.takeBytes(library.pathOffset - before);
        layout_.libraries.push_back({std::string{content.takeText()}, isWeak});
    }

    void readDyldInfo(const DyldInfo& info) {
        if (info.weakBinds.size != 0) refuse("size of the weak bindings", info.weakBinds.size);
        const auto range = [&](DyldInfo::Range bytes) {
            return part(file_, bytes.offset, bytes.size);
        };
        layout_.rebases = range(info.rebases);
        layout_.binds = range(info.binds);
        layout_.lazyBinds = range(info.lazyBinds);
        layout_.exports = range(info.exports);
        hasDyldInfo_ = true;
    }

    Bytes file_;
    Layout layout_;
    bool hasDyldInfo_ = false;
};

}  // namespace

Layout readLayout(Bytes file) { return LayoutReader{file}.read(); }

}  // namespace quillet::macho
