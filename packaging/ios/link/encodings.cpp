// SPDX-License-Identifier: MIT
#include "packaging/ios/link/encodings.h"

#include <algorithm>
#include <tuple>

#include "packaging/ios/link/bytes.h"
#include "packaging/ios/link/mach_o.h"

namespace quillet::linker {

namespace {

// Operations: the high half of a byte says what, the low half holds a small argument.
enum : std::uint8_t {
    done = 0,
    rebaseSetType = 0x10,
    rebaseSetPlace = 0x20,
    rebaseTimes = 0x60,
    bindSetLibrary = 0x20,
    bindSetSymbol = 0x40,
    bindSetType = 0x50,
    bindSetPlace = 0x70,
    bindOnce = 0x90,
};
constexpr std::uint32_t typePointer = 1, weakImport = 1;

char operation(std::uint8_t kind, std::uint32_t argument = 0) {
    return static_cast<char>(kind | argument);
}

}  // namespace

std::string uleb(std::uint32_t value) {
    std::string bytes;
    for (; value >= 0x80; value >>= 7) bytes += static_cast<char>((value & 0x7F) | 0x80);
    return bytes + static_cast<char>(value);
}

std::string differences(const std::vector<std::uint32_t>& numbers) {
    std::string bytes;
    std::uint32_t last = 0;
    for (const std::uint32_t number : numbers) {
        bytes += uleb(number - last);
        last = number;
    }
    return bytes + '\0';
}

std::string rebaseProgram(std::uint32_t segment, const std::vector<std::uint32_t>& offsets) {
    std::string program{operation(rebaseSetType, typePointer)};
    for (std::size_t i = 0; i < offsets.size();) {
        std::uint32_t times = 1;
        while (i + times < offsets.size() &&
               offsets[i + times] == offsets[i] + times * mach_o::pointerSize) {
            ++times;
        }
        program += operation(rebaseSetPlace, segment) + uleb(offsets[i]);
        program += operation(rebaseTimes) + uleb(times);
        i += times;
    }
    return program + operation(done);
}

std::string bindProgram(std::uint32_t segment, std::vector<Bind> binds) {
    std::ranges::sort(binds, {}, [](const Bind& bind) {
        return std::tie(bind.library, bind.symbol, bind.offset);
    });
    std::string program{operation(bindSetType, typePointer)};
    const Bind* last = nullptr;
    for (const Bind& bind : binds) {
        if (last == nullptr || last->library != bind.library) {
            program += operation(bindSetLibrary) + uleb(bind.library);
        }
        if (last == nullptr || last->symbol != bind.symbol) {
            program += operation(bindSetSymbol, bind.isWeak ? weakImport : 0) + bind.symbol + '\0';
        }
        program += operation(bindSetPlace, segment) + uleb(bind.offset);
        program += operation(bindOnce);
        last = &bind;
    }
    return program + operation(done);
}

std::string exportTrie(const std::map<std::string, std::uint32_t>& exports) {
    // Nodes, of which this tree has one for the root and one for each name:
    //
    //   size of the next two   flags (0)   address   number of edges   edge…
    //                          '--- if a name ends here ---'
    //   edge: characters, a zero byte, and where in the tree the node is that they lead to
    //
    // A name that another one begins with must come behind it: the first edge that fits is
    // followed.
    if (exports.size() > 0xFF) refuse("more exports than a node has edges");
    // The root's size depends on what stands in it, and the other way round.
    for (std::uint32_t rootSize = 0;;) {
        std::string root{'\0', static_cast<char>(exports.size())};
        std::string leaves;
        for (auto one = exports.rbegin(); one != exports.rend(); ++one) {
            const std::string terminal = uleb(0) + uleb(one->second);
            root += one->first + '\0' + uleb(rootSize + sizeOf(leaves));
            leaves += uleb(sizeOf(terminal)) + terminal + '\0';
        }
        if (sizeOf(root) == rootSize) return root + leaves;
        rootSize = sizeOf(root);
    }
}

}  // namespace quillet::linker
