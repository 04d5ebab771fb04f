// SPDX-License-Identifier: MIT
#include "packaging/ios/link/relocation_reader.h"

namespace quillet::linker {

namespace {

// A relocation is two words, in one of two forms. The highest bit of the first word tells them
// apart:
//
//              31         30        29 28   27 26 25 24   23                0
//   plain      0          place in the section
//              type (4 bits)  external  length (2)  relative   symbol or section (24)
//   scattered  1          relative  length  type          place in the section
//              an address in the object
//
// A difference is two scattered ones, the second of the kind PAIR with the address to subtract.

struct Entry {
    bool isScattered, isRelative, isExternal;
    unsigned length, type;
    std::uint32_t place;
    /// A symbol or a section (counted from 1); an address in a scattered entry.
    std::uint32_t value;
};

enum : unsigned { vanilla = 0, pair = 1, sectionDifference = 2, branch24 = 5, wordLength = 2 };

constexpr const char* typeNames[] = {"ARM_RELOC_VANILLA",    "ARM_RELOC_PAIR",
                                     "ARM_RELOC_SECTDIFF",   "ARM_RELOC_LOCAL_SECTDIFF",
                                     "ARM_RELOC_PB_LA_PTR",  "ARM_RELOC_BR24",
                                     "ARM_THUMB_RELOC_BR22", "ARM_THUMB_32BIT_BRANCH",
                                     "ARM_RELOC_HALF",       "ARM_RELOC_HALF_SECTDIFF"};

Entry entryAt(std::string_view table, std::size_t at) {
    const auto first = recordAt<std::uint32_t>(table, at);
    const auto second = recordAt<std::uint32_t>(table, at + 4);
    if ((first >> 31) != 0) {
        return {true,
                (first >> 30 & 1) != 0,
                false,
                first >> 28 & 3,
                first >> 24 & 15,
                first & 0xFFFFFF,
                second};
    }
    return {false, (second >> 24 & 1) != 0, (second >> 27 & 1) != 0, second >> 25 & 3, second >> 28,
            first, second & 0xFFFFFF};
}

[[noreturn]] void refuseEntry(const Entry& entry) {
    std::string what = entry.type < std::size(typeNames) ? typeNames[entry.type]
                                                         : "of type " + std::to_string(entry.type);
    if (entry.isScattered) what += ", scattered";
    if (entry.isExternal) what += ", external";
    if (entry.isRelative) what += ", relative";
    refuse("unknown relocation " + what + ", length " + std::to_string(entry.length));
}

class RelocationReader {
public:
    RelocationReader(const ObjectFile& object, std::size_t section)
        : object_{object}, section_{object.sections[section]} {}

    std::vector<Relocation> read(std::string_view table) {
        std::vector<Relocation> relocations;
        for (std::size_t at = 0; at < table.size(); at += 8) {
            const Entry entry = entryAt(table, at);
            if (entry.place % 4 != 0 || entry.place + 4 > section_.size) {
                refuse("a relocation beside the words of " + section_.name);
            }
            if (entry.isScattered) {
                at += 8;
                relocations.push_back(difference(entry, table, at));
            } else {
                relocations.push_back(plain(entry));
            }
        }
        return relocations;
    }

private:
    static Relocation difference(const Entry& to, std::string_view table, std::size_t fromAt) {
        if (to.type != sectionDifference || to.isRelative || to.length != wordLength)
            refuseEntry(to);
        const Entry from = entryAt(table, fromAt);
        if (!from.isScattered || from.type != pair) refuseEntry(from);
        return {Relocation::Kind::difference, to.place, 0, to.value, from.value};
    }

    Relocation plain(const Entry& entry) const {
        const bool isBranch = entry.type == branch24 && entry.isRelative && entry.isExternal;
        const bool isAddress = entry.type == vanilla && !entry.isRelative;
        if (entry.length != wordLength || (!isBranch && !isAddress)) refuseEntry(entry);
        if (isAddress && section_.segment == "__TEXT") {
            refuse("an absolute address in " + section_.name);
        }
        if (entry.isExternal) {
            if (entry.value >= object_.symbols.size()) refuse("a relocation to no symbol");
            return {isBranch ? Relocation::Kind::branch : Relocation::Kind::symbol, entry.place,
                    entry.value, 0, 0};
        }
        if (entry.value == 0 || entry.value > object_.sections.size()) {
            refuse("a relocation to no section");
        }
        return {Relocation::Kind::section, entry.place, entry.value - 1, 0, 0};
    }

    const ObjectFile& object_;
    const Section& section_;
};

}  // namespace

std::vector<Relocation> readRelocations(std::string_view table, const ObjectFile& object,
                                        std::size_t section) {
    return RelocationReader{object, section}.read(table);
}

}  // namespace quillet::linker
