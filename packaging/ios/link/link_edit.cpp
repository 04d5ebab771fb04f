// SPDX-License-Identifier: MIT
#include "packaging/ios/link/link_edit.h"

#include <algorithm>
#include <set>

#include "packaging/ios/link/encodings.h"

namespace quillet::linker {

namespace {

using mach_o::SymbolRecord;

constexpr std::uint32_t dataSegment = 1;  // the second
/// The signature that follows wants this.
constexpr std::uint32_t endAlignment = 16;

/// An imported symbol and who has it.
struct Import {
    /// The object's index of the symbol.
    std::uint32_t symbol;
    /// Counted from 1.
    std::uint32_t library;
    bool isWeak;
};

class LinkEditWriter {
public:
    LinkEditWriter(const ObjectFile& object, const Image& image,
                   const std::vector<StubLibrary>& libraries)
        : object_{object}, image_{image}, libraries_{libraries} {
        for (std::uint32_t i = 0; i < object.symbols.size(); ++i) {
            if (!object.symbols[i].isDefined) addImport(i);
        }
    }

    LinkEdit write(const std::vector<std::string>& exports) {
        for (const std::string& name : exports) addExport(name);
        std::map<std::string, std::uint32_t> places;
        for (const auto& [name, symbol] : exports_) places[name] = object_.placeOf(*symbol);
        linkEdit_.rebases = add(rebaseProgram(dataSegment, rebases()));
        linkEdit_.binds = add(bindProgram(dataSegment, binds()));
        linkEdit_.exports = add(exportTrie(places));
        linkEdit_.functionStarts = add(differences(functions()));
        linkEdit_.dataInCode = add(dataInCode());
        addSymbols();
        addIndirectSymbols();
        linkEdit_.names = add(names_);
        linkEdit_.content.resize(aligned(sizeOf(linkEdit_.content), endAlignment));
        return std::move(linkEdit_);
    }

private:
    /// Adds a table, which begins at a word.
    mach_o::Range add(const std::string& table) {
        linkEdit_.content.resize(aligned(sizeOf(linkEdit_.content), 4));
        const std::uint32_t offset = sizeOf(image_.content) + sizeOf(linkEdit_.content);
        linkEdit_.content += table;
        return {offset, sizeOf(table)};
    }

    void addImport(std::uint32_t index) {
        const std::string& name = object_.symbols[index].name;
        const auto found = std::ranges::find_if(
            libraries_, [&](const StubLibrary& one) { return one.symbols.contains(name); });
        if (found == libraries_.end()) refuse("no library has " + name);
        const auto library = static_cast<std::uint32_t>(found - libraries_.begin() + 1);
        imports_[name] = {index, library, found->isWeak};
    }

    void addExport(const std::string& name) {
        const auto found = std::ranges::find_if(object_.symbols, [&](const Symbol& symbol) {
            return symbol.isDefined && symbol.isVisible && symbol.name == name;
        });
        if (found == object_.symbols.end()) refuse("the object does not offer " + name);
        exports_[name] = &*found;
    }

    std::vector<std::uint32_t> rebases() const {
        std::vector<std::uint32_t> offsets = image_.rebases;
        for (std::uint32_t& offset : offsets) offset -= image_.dataStart;
        return offsets;
    }

    std::vector<Bind> binds() const {
        std::vector<Bind> binds;
        for (const ImportSlot& slot : image_.imports) {
            const std::string& name = object_.symbols[slot.symbol].name;
            const Import& import = imports_.at(name);
            binds.push_back({import.library, name, import.isWeak, slot.place - image_.dataStart});
        }
        return binds;
    }

    /// Where the functions begin.
    std::vector<std::uint32_t> functions() const {
        std::set<std::uint32_t> places;
        for (const Symbol& symbol : object_.symbols) {
            if (symbol.isDefined && object_.sections[symbol.section].name == "__text") {
                places.insert(object_.placeOf(symbol));
            }
        }
        return {places.begin(), places.end()};
    }

    std::string dataInCode() const {
        std::string table;
        for (mach_o::DataInCode entry : object_.dataInCode) {
            entry.offset = object_.placeOf(entry.offset);
            append(table, entry);
        }
        return table;
    }

    void addSymbols() {
        std::string table;
        for (const auto& [name, symbol] : exports_) {
            append(table,
                   SymbolRecord{addName(name), SymbolRecord::inSection | SymbolRecord::external,
                                object_.sections[symbol->section].number, 0,
                                object_.placeOf(*symbol)});
        }
        for (const auto& [name, import] : imports_) {
            const auto description = static_cast<std::uint16_t>(
                import.library << 8 | (import.isWeak ? SymbolRecord::weakImport : 0));
            append(table,
                   SymbolRecord{addName(name), SymbolRecord::undefined | SymbolRecord::external, 0,
                                description, 0});
        }
        linkEdit_.symbols = add(table);
        linkEdit_.definedCount = static_cast<std::uint32_t>(exports_.size());
        linkEdit_.undefinedCount = static_cast<std::uint32_t>(imports_.size());
    }

    std::uint32_t addName(const std::string& name) {
        const std::uint32_t offset = sizeOf(names_);
        names_ += name + '\0';
        return offset;
    }

    /// For each pointer and stub, the number of its symbol in the table.
    void addIndirectSymbols() {
        std::string table;
        for (const Section* section : image_.sections) {
            if (section->indirect.empty()) continue;
            linkEdit_.firstIndirect[section] = sizeOf(table) / 4;
            for (const std::uint32_t symbol : section->indirect) {
                const auto import = imports_.find(object_.symbols[symbol].name);
                const auto number = std::distance(imports_.begin(), import);
                append(table, linkEdit_.definedCount + static_cast<std::uint32_t>(number));
            }
        }
        linkEdit_.indirect = add(table);
        linkEdit_.indirectCount = sizeOf(table) / 4;
    }

    const ObjectFile& object_;
    const Image& image_;
    const std::vector<StubLibrary>& libraries_;
    std::map<std::string, Import> imports_;
    std::map<std::string, const Symbol*> exports_;
    /// The first one is that of no symbol.
    std::string names_ = std::string(1, '\0');
    LinkEdit linkEdit_ = {};
};

}  // namespace

LinkEdit makeLinkEdit(const ObjectFile& object, const Image& image,
                      const std::vector<std::string>& exports,
                      const std::vector<StubLibrary>& libraries) {
    return LinkEditWriter{object, image, libraries}.write(exports);
}

}  // namespace quillet::linker
