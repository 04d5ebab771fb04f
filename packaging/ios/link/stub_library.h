// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <string_view>

namespace quillet::linker {

/// What a text stub says of a library on the device.
struct StubLibrary {
    /// Its path there.
    std::string name;
    /// The least version that it must have for the module to load, in the file format's form:
    /// 0x00010000 is 1.0.0.
    std::uint32_t compatibilityVersion = 0x10000;
    std::set<std::string> symbols;
    /// Without it the module loads all the same.
    bool isWeak = false;
};

/// Reads a stub of the form that packaging/ios/stubs has; it must be for armv7 too. Throws
/// LinkError otherwise.
StubLibrary readStubLibrary(std::string_view text);

}  // namespace quillet::linker
