// SPDX-License-Identifier: MIT
#include "tests/platforms/macho/loader/exports.h"

namespace quillet::macho {

namespace {

/// The node at the edge of which `symbol` goes on, without the edge's part of it.
std::optional<std::uint64_t> follow(Reader edges, std::string_view& symbol) {
    const auto count = edges.take<std::uint8_t>();
    for (unsigned i = 0; i < count; ++i) {
        const std::string_view label = edges.takeText();
        const std::uint64_t node = edges.takeUnsigned();
        // An edge without a label could lead round in a circle.
        if (label.empty()) malformed("an edge without a label in the exports");
        if (symbol.starts_with(label)) {
            symbol.remove_prefix(label.size());
            return node;
        }
    }
    return std::nullopt;
}

}  // namespace

std::optional<std::uint64_t> findExport(Bytes trie, std::string_view symbol) {
    std::optional<std::uint64_t> node = trie.empty() ? std::nullopt : std::optional{0};
    while (node) {
        Reader reader{part(trie, 0, trie.size()).subspan(part(trie, 0, *node).size())};
        Reader terminal{reader.takeBytes(reader.takeUnsigned())};
        if (symbol.empty()) {
            if (terminal.atEnd()) return std::nullopt;
            // Other kinds are re-exports, resolvers and variables of threads.
            if (terminal.takeUnsigned() != 0) malformed("an export of a special kind");
            return terminal.takeUnsigned();
        }
        node = follow(reader, symbol);
    }
    return std::nullopt;
}

}  // namespace quillet::macho
