// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tests/platforms/macho/loader/reader.h"

namespace quillet::macho {

struct Segment {
    std::uint64_t address;
    std::uint64_t size;
    /// What it begins with; the rest is zero.
    Bytes content;
    bool writable;
    bool executable;
};

struct Section {
    std::string name;
    std::uint64_t address;
    std::uint64_t size;
};

/// A library whose symbols a module imports.
struct Library {
    /// On the device.
    std::string path;
    /// Whether the module can do without it.
    bool isWeak;
};

/// What a module's file says of itself. Addresses are those that the linker gave, from 0.
struct Layout {
    std::vector<Segment> segments;
    std::vector<Section> sections;
    /// In the order in which imports count them.
    std::vector<Library> libraries;
    Bytes rebases;
    Bytes binds;
    Bytes lazyBinds;
    Bytes exports;
};

/// Reads the file of a loadable module for this machine's architecture; the answer refers to its
/// bytes. Throws BundleError for what is malformed and for what this loader does not do.
Layout readLayout(Bytes file);

}  // namespace quillet::macho
