// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "packaging/ios/link/bytes.h"
#include "packaging/ios/link/mach_o.h"

namespace quillet::linker {

/// How far a stub jumps, and so how large a module may be.
inline constexpr std::uint32_t reach = 1U << 20;

/// A word or an instruction that depends on where things come to lie.
struct Relocation {
    enum class Kind {
        symbol,      ///< a word: the address of a symbol, plus the word
        section,     ///< a word: an address in a section
        branch,      ///< an instruction: to a symbol
        difference,  ///< a word: from one address to another, plus a constant
    };

    Kind kind;
    /// From the section's start.
    std::uint32_t place;
    /// The index of the symbol or of the section.
    std::uint32_t target;
    /// The two addresses of a difference, in the object.
    std::uint32_t to, from;
};

struct Section {
    std::string segment, name;
    /// In the object.
    std::uint32_t address;
    std::uint32_t size;
    std::uint32_t alignment;
    std::uint32_t flags;
    /// As long as `size`; zeros for a section of zeros.
    std::string content;
    std::vector<Relocation> relocations;
    /// Of each pointer or stub: the index of the symbol that it is for.
    std::vector<std::uint32_t> indirect = {};
    std::uint32_t stubSize = 0;
    /// In the module, and the number there, from 1; set by the layout.
    std::uint32_t place = 0;
    std::uint8_t number = 0;

    std::uint32_t type() const { return flags & 0xFF; }
};

struct Symbol {
    std::string name;
    bool isDefined;
    /// May be exported.
    bool isVisible;
    /// In the object.
    std::uint32_t address;
    /// The index of the section that holds it.
    std::uint32_t section;
};

struct ObjectFile {
    std::vector<Section> sections;
    std::vector<Symbol> symbols;
    /// Offsets are addresses in the object.
    std::vector<mach_o::DataInCode> dataInCode;

    /// Where an address in the object has come to lie, for an address in any section.
    std::uint32_t placeOf(std::uint32_t address) const;
    /// Where a defined symbol has come to lie.
    std::uint32_t placeOf(const Symbol& symbol) const;
};

/// Reads an object that clang made of ARM code. Throws LinkError for what is malformed and, with
/// its name, for every load command, section, symbol or relocation that this linker does not know.
ObjectFile readObject(std::string_view file);

}  // namespace quillet::linker
