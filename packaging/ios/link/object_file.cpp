// SPDX-License-Identifier: MIT
#include "packaging/ios/link/object_file.h"

#include <algorithm>
#include <cstdio>
#include <utility>

#include "packaging/ios/link/relocation_reader.h"

namespace quillet::linker {

namespace {

using mach_o::Command;
using mach_o::SectionRecord;
using mach_o::SymbolRecord;

struct KnownSection {
    std::string_view segment, name;
    std::uint32_t type;
};

constexpr KnownSection knownSections[] = {
    {"__TEXT", "__text", SectionRecord::regular},
    {"__TEXT", "__const", SectionRecord::regular},
    {"__TEXT", "__cstring", SectionRecord::strings},
    {"__TEXT", "__objc_classname", SectionRecord::strings},
    {"__TEXT", "__objc_methname", SectionRecord::strings},
    {"__TEXT", "__objc_methtype", SectionRecord::strings},
    {"__DATA", "__data", SectionRecord::regular},
    {"__DATA", "__const", SectionRecord::regular},
    {"__DATA", "__objc_classlist", SectionRecord::regular},
    {"__DATA", "__objc_classrefs", SectionRecord::regular},
    {"__DATA", "__objc_const", SectionRecord::regular},
    {"__DATA", "__objc_data", SectionRecord::regular},
    {"__DATA", "__objc_imageinfo", SectionRecord::regular},
    {"__DATA", "__objc_ivar", SectionRecord::regular},
    {"__DATA", "__objc_nlclslist", SectionRecord::regular},
    {"__DATA", "__objc_protolist", SectionRecord::coalesced},
    {"__DATA", "__objc_selrefs", SectionRecord::pointers},
    {"__DATA", "__objc_superrefs", SectionRecord::regular},
    {"__DATA", "__nl_symbol_ptr", SectionRecord::importedPointers},
    {"__DATA", "__bss", SectionRecord::zeroFilled},
    {"__DATA", "__common", SectionRecord::zeroFilled},
};

std::string hexadecimal(std::uint32_t number) {
    char digits[16];
    std::snprintf(digits, sizeof digits, "0x%X", number);
    return digits;
}

/// The characters before the first zero byte.
std::string textOf(std::string_view characters) {
    return std::string{characters.substr(0, characters.find('\0'))};
}

std::string nameOf(const mach_o::Name& name) { return textOf({name.data(), name.size()}); }

bool isKnown(const Section& section) {
    return std::ranges::any_of(knownSections, [&](const KnownSection& known) {
        return known.segment == section.segment && known.name == section.name &&
               known.type == section.type();
    });
}

class ObjectReader {
public:
    explicit ObjectReader(std::string_view file) : file_{file} {}

    ObjectFile read() {
        const auto header = recordAt<mach_o::Header>(file_, 0);
        if (header.magic != mach_o::Header::thisMagic) refuse("this is no 32-bit Mach-O file");
        if (header.cpu != mach_o::Header::arm || header.cpuVariant != mach_o::Header::v7) {
            refuse("this is not for armv7");
        }
        if (header.type != mach_o::Header::object) refuse("this is no object file");
        std::size_t at = sizeof header;
        for (std::uint32_t i = 0; i < header.commandCount; ++i) at += readCommand(at);
        readSymbols();
        readIndirect();
        for (std::size_t i = 0; i < records_.size(); ++i) readRelocations(i);
        return std::move(object_);
    }

private:
    std::uint32_t readCommand(std::size_t at) {
        const auto command = recordAt<Command>(file_, at);
        if (command.size < sizeof command) refuse("a load command has no size");
        switch (command.kind) {
            case Command::segment:
                readSegment(at);
                break;
            case Command::symbols:
                symbolTable_ = recordAt<mach_o::SymbolsCommand>(file_, at);
                break;
            case Command::dynamicSymbols:
                dynamicSymbols_ = recordAt<mach_o::DynamicSymbolsCommand>(file_, at);
                break;
            case Command::dataInCode:
                readDataInCode(recordAt<mach_o::RangeCommand>(file_, at).range);
                break;
            case Command::minimumIOS:
                break;
            default:
                refuse("unknown load command " + hexadecimal(command.kind));
        }
        return command.size;
    }

    void readSegment(std::size_t at) {
        const auto segment = recordAt<mach_o::SegmentCommand>(file_, at);
        at += sizeof segment;
        for (std::uint32_t i = 0; i < segment.sectionCount; ++i, at += sizeof(SectionRecord)) {
            readSection(recordAt<SectionRecord>(file_, at));
        }
    }

    void readSection(const SectionRecord& record) {
        Section section{nameOf(record.segmentName),
                        nameOf(record.name),
                        record.address,
                        record.size,
                        alignmentOf(record),
                        record.flags,
                        {},
                        {}};
        if (!isKnown(section)) {
            refuse("unknown section " + section.segment + "," + section.name + " of type " +
                   hexadecimal(section.type()));
        }
        if (record.size > reach) refuse("too large: " + section.name);
        section.content = section.type() == SectionRecord::zeroFilled
                              ? std::string(record.size, '\0')
                              : std::string{part(file_, record.fileOffset, record.size)};
        object_.sections.push_back(std::move(section));
        records_.push_back(record);
    }

    static std::uint32_t alignmentOf(const SectionRecord& record) {
        if (record.alignmentExponent > 12) refuse("a section wants more than a page's alignment");
        return 1U << record.alignmentExponent;
    }

    void readDataInCode(mach_o::Range range) {
        for (std::uint32_t at = 0; at < range.size; at += sizeof(mach_o::DataInCode)) {
            object_.dataInCode.push_back(
                recordAt<mach_o::DataInCode>(file_, std::size_t{range.offset} + at));
        }
    }

    void readSymbols() {
        const std::string_view names =
            part(file_, symbolTable_.names.offset, symbolTable_.names.size);
        std::size_t at = symbolTable_.symbolOffset;
        for (std::uint32_t i = 0; i < symbolTable_.symbolCount; ++i, at += sizeof(SymbolRecord)) {
            const auto record = recordAt<SymbolRecord>(file_, at);
            if (record.name >= names.size()) refuse("a symbol without a name");
            readSymbol(record, textOf(names.substr(record.name)));
        }
    }

    void readSymbol(const SymbolRecord& record, std::string name) {
        const int kind = record.type & SymbolRecord::kind;
        const bool isDefined = kind == SymbolRecord::inSection;
        const bool isExternal = (record.type & SymbolRecord::external) != 0;
        const bool isHidden = (record.type & SymbolRecord::hidden) != 0;
        if ((record.type & SymbolRecord::debug) != 0) refuse("a debugger's symbol: " + name);
        if (!isDefined && (kind != SymbolRecord::undefined || record.value != 0)) {
            refuse("a symbol that is neither in a section nor imported: " + name);
        }
        if (isDefined && (record.section == 0 || record.section > object_.sections.size())) {
            refuse("a symbol in no section: " + name);
        }
        if (isDefined && (record.description & SymbolRecord::thumb) != 0) {
            refuse("a function in Thumb code: " + name);
        }
        if (!isDefined && (record.description & SymbolRecord::weakImport) != 0) {
            refuse("an import that may be missing: " + name);
        }
        const bool isWeak = (record.description & SymbolRecord::weakDefinition) != 0;
        if (isWeak && isExternal && !isHidden) {
            refuse("a symbol to be merged with other modules': " + name);
        }
        object_.symbols.push_back({std::move(name), isDefined, isExternal && !isHidden,
                                   record.value, record.section - 1U});
    }

    void readIndirect() {
        for (std::size_t i = 0; i < records_.size(); ++i) {
            Section& section = object_.sections[i];
            if (section.type() != SectionRecord::importedPointers) continue;
            std::size_t at =
                dynamicSymbols_.indirectOffset + std::size_t{4} * records_[i].firstIndirect;
            for (std::uint32_t slot = 0; slot < section.size / 4; ++slot, at += 4) {
                section.indirect.push_back(importAt(at));
            }
        }
    }

    std::uint32_t importAt(std::size_t at) const {
        const auto symbol = recordAt<std::uint32_t>(file_, at);
        if (symbol >= object_.symbols.size()) refuse("a pointer in __nl_symbol_ptr to no symbol");
        if (object_.symbols[symbol].isDefined) {
            refuse("a pointer in __nl_symbol_ptr to a symbol of the object's own: " +
                   object_.symbols[symbol].name);
        }
        return symbol;
    }

    void readRelocations(std::size_t index) {
        const SectionRecord& record = records_[index];
        const std::string_view table =
            part(file_, record.relocationOffset, std::size_t{8} * record.relocationCount);
        object_.sections[index].relocations = linker::readRelocations(table, object_, index);
    }

    std::string_view file_;
    ObjectFile object_;
    std::vector<SectionRecord> records_;
    mach_o::SymbolsCommand symbolTable_ = {};
    mach_o::DynamicSymbolsCommand dynamicSymbols_ = {};
};

}  // namespace

std::uint32_t ObjectFile::placeOf(std::uint32_t address) const {
    const auto holds = [&](const Section& section) {
        return address >= section.address && address - section.address < section.size;
    };
    const auto found = std::ranges::find_if(sections, holds);
    if (found == sections.end())
        refuse("the address " + hexadecimal(address) + " is in no section");
    return found->place + (address - found->address);
}

std::uint32_t ObjectFile::placeOf(const Symbol& symbol) const {
    const Section& section = sections[symbol.section];
    return section.place + (symbol.address - section.address);
}

ObjectFile readObject(std::string_view file) { return ObjectReader{file}.read(); }

}  // namespace quillet::linker
