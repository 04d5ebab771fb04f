// SPDX-License-Identifier: MIT
#include "packaging/ios/link/encodings.h"

#include <algorithm>

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
    std::ranges::sort(binds);
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

namespace {

// A node of the tree of exports:
//
//   size of the next two   flags (0)   address   number of edges   edge…
//                          '--- absent if no name ends here ---'
//   edge: characters, a zero byte, and where in the tree the node is that they lead to
struct Node {
    std::string terminal;
    std::vector<std::pair<std::string, std::size_t>> edges;
    std::uint32_t offset = 0;
};

class Trie {
public:
    explicit Trie(const std::map<std::string, std::uint32_t>& exports)
        : exports_{exports.begin(), exports.end()} {
        addNode(0, exports_.size(), 0);
    }

    /// A node's size depends on where the others are, and the other way round: places only grow,
    /// so this ends.
    std::string bytes() {
        for (;;) {
            std::string bytes;
            bool isSettled = true;
            for (Node& node : nodes_) {
                const auto offset = static_cast<std::uint32_t>(bytes.size());
                isSettled = isSettled && node.offset == offset;
                node.offset = offset;
                bytes += encoded(node);
            }
            if (isSettled) return bytes;
        }
    }

private:
    /// The node for the names from `first` to before `last`, which have `depth` characters in
    /// common.
    std::size_t addNode(std::size_t first, std::size_t last, std::size_t depth) {
        const std::size_t index = nodes_.size();
        nodes_.emplace_back();
        if (first < last && exports_[first].first.size() == depth) {
            nodes_[index].terminal = uleb(0) + uleb(exports_[first].second);
            ++first;
        }
        while (first < last) {
            const std::size_t next = endOfEdge(first, last, depth);
            const std::size_t length = sharedLength(first, next - 1);
            const std::string label = exports_[first].first.substr(depth, length - depth);
            const std::size_t child = addNode(first, next, length);
            nodes_[index].edges.emplace_back(label, child);
            first = next;
        }
        return index;
    }

    /// The first name behind `first` that goes on with another character at `depth`.
    std::size_t endOfEdge(std::size_t first, std::size_t last, std::size_t depth) const {
        std::size_t end = first + 1;
        while (end < last && exports_[end].first[depth] == exports_[first].first[depth]) ++end;
        return end;
    }

    /// The number of characters that two names begin with. The names are in order, so all those
    /// between begin with them too.
    std::size_t sharedLength(std::size_t one, std::size_t other) const {
        const std::string& name = exports_[one].first;
        return static_cast<std::size_t>(std::ranges::mismatch(name, exports_[other].first).in1 -
                                        name.begin());
    }

    std::string encoded(const Node& node) const {
        std::string bytes = uleb(static_cast<std::uint32_t>(node.terminal.size())) + node.terminal;
        bytes += static_cast<char>(node.edges.size());
        for (const auto& [label, child] : node.edges) {
            bytes += label + '\0' + uleb(nodes_[child].offset);
        }
        return bytes;
    }

    std::vector<std::pair<std::string, std::uint32_t>> exports_;
    std::vector<Node> nodes_;
};

}  // namespace

std::string exportTrie(const std::map<std::string, std::uint32_t>& exports) {
    return Trie{exports}.bytes();
}

}  // namespace quillet::linker
