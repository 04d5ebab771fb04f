// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

/// The tables that the dynamic linker reads: small programs and a tree, made of bytes.
namespace quillet::linker {

/// A number in groups of seven bits, the lowest first; a byte's highest bit says that more follow.
std::string uleb(std::uint32_t value);

/// The numbers' differences, each as in `uleb`, the first one's from 0, and a zero byte at the end.
/// The numbers ascend.
std::string differences(const std::vector<std::uint32_t>& numbers);

/// A pointer to be filled in with the address of a library's symbol.
struct Bind {
    /// The library, counted from 1 in the order of the load commands.
    std::uint32_t library;
    std::string symbol;
    /// Without the symbol the pointer is null and the module loads all the same.
    bool isWeak;
    /// From the start of the segment.
    std::uint32_t offset;
};

/// The program that adds the module's place to pointers in one segment. The offsets are from its
/// start, in bytes, and ascend.
std::string rebaseProgram(std::uint32_t segment, const std::vector<std::uint32_t>& offsets);

/// The program that fills in pointers in one segment.
std::string bindProgram(std::uint32_t segment, std::vector<Bind> binds);

/// The tree of exported names, each with its place from the module's start.
std::string exportTrie(const std::map<std::string, std::uint32_t>& exports);

}  // namespace quillet::linker
