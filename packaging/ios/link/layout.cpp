// SPDX-License-Identifier: MIT
#include "packaging/ios/link/layout.h"

#include <algorithm>
#include <map>

namespace quillet::linker {

namespace {

using mach_o::pointerSize;
using mach_o::SectionRecord;

// A stub jumps to where its pointer leads, which lies behind it by less than a megabyte:
//   add ip, pc, #distance, high bits
//   ldr pc, [ip, #distance, low 12 bits]
constexpr std::uint32_t addToPc = 0xE28FCA00, loadPc = 0xE59CF000;
constexpr std::uint32_t stubSize = 8;
/// What an instruction reads as its own place is two instructions further on.
constexpr std::uint32_t pcAhead = 8;

class Layout {
public:
    explicit Layout(ObjectFile& object) : object_{object} {}

    Image make() {
        addStubs();
        std::uint32_t end = place("__TEXT", pageSize);
        image_.dataStart = aligned(end, pageSize);
        end = place("__DATA", image_.dataStart);
        if (end > reach) refuse("the module is larger than its stubs reach");
        image_.content.assign(aligned(end, pageSize), '\0');
        for (const Section& section : object_.sections) {
            image_.content.replace(section.place, section.size, section.content);
        }
        for (const Section& section : object_.sections) fill(section);
        fillStubs();
        std::ranges::sort(image_.rebases);
        return std::move(image_);
    }

private:
    void addStubs() {
        std::vector<std::uint32_t> functions;
        for (const Section& section : object_.sections) {
            for (const Relocation& relocation : section.relocations) {
                if (relocation.kind != Relocation::Kind::branch) continue;
                if (object_.symbols[relocation.target].isDefined) continue;
                const auto stub = static_cast<std::uint32_t>(stubs_.size());
                if (stubs_.emplace(relocation.target, stub).second) {
                    functions.push_back(relocation.target);
                }
            }
        }
        addSection("__TEXT", "__stubs", SectionRecord::stubs | SectionRecord::instructions,
                   stubSize, functions);
        object_.sections.back().stubSize = stubSize;
        addSection("__DATA", "__got", SectionRecord::importedPointers, pointerSize, functions);
        stubsIndex_ = object_.sections.size() - 2;
    }

    void addSection(const char* segment, const char* name, std::uint32_t flags,
                    std::uint32_t entrySize, const std::vector<std::uint32_t>& symbols) {
        const auto size = static_cast<std::uint32_t>(entrySize * symbols.size());
        object_.sections.push_back(
            {segment, name, endOfObject(), size, 4, flags, std::string(size, '\0'), {}, symbols});
    }

    /// An address that none of the sections has.
    std::uint32_t endOfObject() const {
        std::uint32_t end = 0;
        for (const Section& section : object_.sections) {
            end = std::max(end, section.address + section.size);
        }
        return end;
    }

    /// Sections of zeros come last, as the file format asks. Answers the end.
    std::uint32_t place(std::string_view segment, std::uint32_t end) {
        for (const bool zeroFilled : {false, true}) {
            for (Section& section : object_.sections) {
                if (section.segment != segment) continue;
                if ((section.type() == SectionRecord::zeroFilled) != zeroFilled) continue;
                section.place = aligned(end, section.alignment);
                end = section.place + section.size;
                image_.sections.push_back(&section);
                section.number = static_cast<std::uint8_t>(image_.sections.size());
            }
        }
        return end;
    }

    void fill(const Section& section) {
        for (const Relocation& relocation : section.relocations) {
            const std::uint32_t place = section.place + relocation.place;
            const std::uint32_t word = wordAt(place);
            put(image_.content, place, relocated(section, relocation, word));
        }
        if (section.type() != SectionRecord::importedPointers) return;
        std::uint32_t place = section.place;
        for (const std::uint32_t symbol : section.indirect) {
            image_.imports.push_back({place, symbol});
            place += pointerSize;
        }
    }

    std::uint32_t relocated(const Section& section, const Relocation& relocation,
                            std::uint32_t word) {
        const std::uint32_t place = section.place + relocation.place;
        switch (relocation.kind) {
            case Relocation::Kind::symbol:
                return address(relocation.target, place, word);
            case Relocation::Kind::section:
                image_.rebases.push_back(place);
                return placeIn(object_.sections[relocation.target], word);
            case Relocation::Kind::branch:
                return branch(relocation, section.address + relocation.place, place, word);
            default:
                return word - (relocation.to - relocation.from) +
                       (object_.placeOf(relocation.to) - object_.placeOf(relocation.from));
        }
    }

    std::uint32_t address(std::uint32_t target, std::uint32_t place, std::uint32_t word) {
        const Symbol& symbol = object_.symbols[target];
        if (symbol.isDefined) {
            image_.rebases.push_back(place);
            return object_.placeOf(symbol) + word;
        }
        if (word != 0) refuse("an address beside an imported symbol: " + symbol.name);
        image_.imports.push_back({place, target});
        return 0;
    }

    static std::uint32_t placeIn(const Section& section, std::uint32_t address) {
        if (address < section.address || address - section.address > section.size) {
            refuse("an address outside its section, " + section.name);
        }
        return section.place + (address - section.address);
    }

    /// The object's branch leads to address 0 when it is not relocated, and the distance is in
    /// words.
    std::uint32_t branch(const Relocation& relocation, std::uint32_t oldPlace, std::uint32_t place,
                         std::uint32_t word) const {
        constexpr std::uint32_t distanceBits = 0xFFFFFF;
        const Symbol& symbol = object_.symbols[relocation.target];
        const bool isBlx = word >> 28 == 0xF;
        if (isBlx || (((word << 2) + oldPlace + pcAhead) & (distanceBits << 2)) != 0) {
            refuse("a branch that is not plainly to the start of " + symbol.name);
        }
        const std::uint32_t target = symbol.isDefined ? object_.placeOf(symbol)
                                                      : object_.sections[stubsIndex_].place +
                                                            stubSize * stubs_.at(relocation.target);
        return (word & ~distanceBits) | (((target - place - pcAhead) >> 2) & distanceBits);
    }

    void fillStubs() {
        std::uint32_t stub = object_.sections[stubsIndex_].place;
        std::uint32_t pointer = object_.sections[stubsIndex_ + 1].place;
        for (std::size_t i = 0; i < stubs_.size(); ++i) {
            const std::uint32_t distance = pointer - (stub + pcAhead);
            put(image_.content, stub, addToPc | (distance >> 12));
            put(image_.content, stub + 4, loadPc | (distance & 0xFFF));
            stub += stubSize;
            pointer += pointerSize;
        }
    }

    std::uint32_t wordAt(std::uint32_t place) const {
        return recordAt<std::uint32_t>(image_.content, place);
    }

    ObjectFile& object_;
    Image image_;
    /// The stub of each called import, counted from 0.
    std::map<std::uint32_t, std::uint32_t> stubs_;
    std::size_t stubsIndex_ = 0;
};

}  // namespace

Image makeImage(ObjectFile& object) { return Layout{object}.make(); }

}  // namespace quillet::linker
