// SPDX-License-Identifier: MIT
#include "packaging/ios/link/module_writer.h"

#include <algorithm>
#include <bit>
#include <sstream>

#include "packaging/ios/link/encodings.h"
#include "packaging/ios/link/layout.h"
#include "packaging/ios/link/link_edit.h"
#include "packaging/ios/link/object_file.h"

namespace quillet::linker {

namespace {

using mach_o::Command;
using mach_o::Header;
using mach_o::SegmentCommand;

constexpr std::uint32_t ios7 = 7U << 16, version1 = 1U << 16;

mach_o::Name fixedName(std::string_view text) {
    mach_o::Name name = {};
    std::ranges::copy(text.substr(0, name.size()), name.begin());
    return name;
}

/// Two of the plain FNV-1a sums with different starts, marked as a UUID of a kind of one's own.
std::array<std::uint8_t, 16> uuidOf(std::string_view content) {
    std::array<std::uint8_t, 16> uuid = {};
    std::uint64_t sums[] = {0xCBF29CE484222325, 0x84222325CBF29CE4};
    for (std::uint64_t& sum : sums) {
        for (const char byte : content) {
            sum = (sum ^ static_cast<unsigned char>(byte)) * 0x100000001B3;
        }
    }
    std::memcpy(uuid.data(), sums, sizeof sums);
    uuid[6] = static_cast<std::uint8_t>((uuid[6] & 0x0F) | 0x80);
    uuid[8] = static_cast<std::uint8_t>((uuid[8] & 0x3F) | 0x80);
    return uuid;
}

class ModuleWriter {
public:
    ModuleWriter(const Image& image, const LinkEdit& linkEdit,
                 const std::vector<StubLibrary>& libraries)
        : image_{image}, linkEdit_{linkEdit}, libraries_{libraries} {}

    std::string write() {
        addSegments();
        addTables();
        add(mach_o::EncryptionCommand{
            {Command::encryption, 0}, {pageSize, image_.dataStart - pageSize}, 0});
        const std::size_t uuidAt = commands_.size();
        add(mach_o::UuidCommand{{Command::uuid, 0}, {}});
        add(mach_o::VersionCommand{{Command::minimumIOS, 0}, ios7, ios7});
        for (const StubLibrary& library : libraries_) addLibrary(library);
        add(mach_o::RangeCommand{{Command::functionStarts, 0}, linkEdit_.functionStarts});
        add(mach_o::RangeCommand{{Command::dataInCode, 0}, linkEdit_.dataInCode});
        std::string file = withHeader();
        put(file, sizeof(Header) + uuidAt + sizeof(Command), uuidOf(file));
        return file;
    }

private:
    /// Adds a load command, and fills in its size; `tail` belongs to it.
    template <class Record>
    void add(Record record, std::string_view tail = {}) {
        record.command.size = std::uint32_t{sizeof record} + sizeOf(tail);
        append(commands_, record);
        commands_ += tail;
        ++commandCount_;
    }

    void addSegments() {
        const auto end = sizeOf(image_.content);
        addSegment("__TEXT", 0, image_.dataStart, SegmentCommand::read | SegmentCommand::execute);
        addSegment("__DATA", image_.dataStart, end - image_.dataStart,
                   SegmentCommand::read | SegmentCommand::write);
        addSegment("__LINKEDIT", end, sizeOf(linkEdit_.content), SegmentCommand::read);
    }

    void addSegment(std::string_view name, std::uint32_t start, std::uint32_t size,
                    std::uint32_t protection) {
        std::string records;
        for (const Section* section : image_.sections) {
            if (section->segment == name) append(records, record(*section));
        }
        const auto count = sizeOf(records) / std::uint32_t{sizeof(mach_o::SectionRecord)};
        add(SegmentCommand{{Command::segment, 0},
                           fixedName(name),
                           start,
                           aligned(size, pageSize),
                           start,
                           size,
                           protection,
                           protection,
                           count,
                           0},
            records);
    }

    mach_o::SectionRecord record(const Section& section) const {
        const bool zeroFilled = section.type() == mach_o::SectionRecord::zeroFilled;
        const auto first = linkEdit_.firstIndirect.find(&section);
        mach_o::SectionRecord record = {};
        record.name = fixedName(section.name);
        record.segmentName = fixedName(section.segment);
        record.address = section.place;
        record.size = section.size;
        record.fileOffset = zeroFilled ? 0 : section.place;
        record.alignmentExponent = static_cast<std::uint32_t>(std::countr_zero(section.alignment));
        record.flags = section.flags;
        record.firstIndirect = first == linkEdit_.firstIndirect.end() ? 0 : first->second;
        record.stubSize = section.stubSize;
        return record;
    }

    void addTables() {
        add(mach_o::DyldInfoCommand{{Command::dyldInfoOnly, 0},
                                    linkEdit_.rebases,
                                    linkEdit_.binds,
                                    {},
                                    {},
                                    linkEdit_.exports});
        const std::uint32_t defined = linkEdit_.definedCount;
        const std::uint32_t undefined = linkEdit_.undefinedCount;
        add(mach_o::SymbolsCommand{
            {Command::symbols, 0}, linkEdit_.symbols.offset, defined + undefined, linkEdit_.names});
        mach_o::DynamicSymbolsCommand command = {};
        command.command.kind = Command::dynamicSymbols;
        command.definedCount = defined;
        command.firstUndefined = defined;
        command.undefinedCount = undefined;
        command.indirectOffset = linkEdit_.indirect.offset;
        command.indirectCount = linkEdit_.indirectCount;
        add(command);
    }

    void addLibrary(const StubLibrary& library) {
        std::string name = library.name + '\0';
        name.resize(aligned(sizeOf(name), 4));
        add(mach_o::LibraryCommand{{library.isWeak ? Command::weakLibrary : Command::library, 0},
                                   sizeof(mach_o::LibraryCommand),
                                   0,
                                   version1,
                                   library.compatibilityVersion},
            name);
    }

    /// The whole file. Behind the commands there must be room for the signing tool's.
    std::string withHeader() const {
        std::string start;
        append(start, Header{Header::thisMagic, Header::arm, Header::v7, Header::bundle,
                             commandCount_, sizeOf(commands_),
                             Header::noUndefined | Header::forDynamicLinker | Header::twoLevel});
        start += commands_;
        if (start.size() + sizeof(mach_o::RangeCommand) > pageSize) {
            refuse("the load commands do not fit into a page");
        }
        std::string file = image_.content + linkEdit_.content;
        return file.replace(0, start.size(), start);
    }

    const Image& image_;
    const LinkEdit& linkEdit_;
    const std::vector<StubLibrary>& libraries_;
    std::string commands_;
    std::uint32_t commandCount_ = 0;
};

/// The lines of a list of exports that are no comments.
std::vector<std::string> namesIn(std::string_view list) {
    std::vector<std::string> names;
    std::istringstream lines{std::string{list}};
    for (std::string line; std::getline(lines, line);) {
        if (!line.empty() && line[0] != '#') names.push_back(line);
    }
    return names;
}

}  // namespace

std::string linkModule(std::string_view object, std::string_view exports,
                       const std::vector<StubLibrary>& libraries) {
    ObjectFile file = readObject(object);
    const Image image = makeImage(file);
    const LinkEdit linkEdit = makeLinkEdit(file, image, namesIn(exports), libraries);
    return ModuleWriter{image, linkEdit, libraries}.write();
}

}  // namespace quillet::linker
