// SPDX-License-Identifier: MIT
#include "platform/standin/plist/tape_builder.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <utility>

namespace quillet::standin {
namespace {

bool areSame(const Node* a, const Node* b) { return a->text() == b->text(); }

/// As many keys are compared each with each sooner than sorted.
constexpr std::size_t fewKeys = 16;

/// Whether no key stands twice in a dictionary of few keys.
bool areFewDifferent(const Node& dictionary) {
    if (dictionary.count > fewKeys) return false;
    std::array<const Node*, fewKeys> keys;
    auto* end = keys.begin();
    for (const Node* key = &dictionary + 1; key != dictionary.next(); key = (key + 1)->next()) {
        const auto isThis = [key](const Node* other) { return areSame(other, key); };
        if (std::any_of(keys.begin(), end, isThis)) return false;
        *end++ = key;
    }
    return true;
}

/// A key's first entry, and the one whose value counts.
struct Member {
    const Node* key;
    const Node* counted;
};

/// One for each of the keys, which are sorted, in the order of their first entries.
std::vector<Member> membersOf(const std::vector<const Node*>& keys, Counts counts) {
    std::vector<Member> members;
    for (const Node* key : keys) {
        if (members.empty() || !areSame(members.back().key, key)) {
            members.push_back({key, key});
        } else if (counts == Counts::last) {
            members.back().counted = key;
        }
    }
    std::ranges::sort(members, {}, &Member::key);
    return members;
}

constexpr char keyWithoutValue[] = "a key without a value";

/// How often each node of a large file may be moved, and how many moves a small one has.
constexpr std::size_t movesOfEach = 16;
constexpr std::size_t movesAllowed = 1000000;

}  // namespace

bool settleDuplicates(std::vector<Node>& nodes, std::size_t place, Counts counts) {
    if (areFewDifferent(nodes[place])) return false;
    const auto keys = sortedKeys(nodes[place]);
    if (std::adjacent_find(keys.begin(), keys.end(), areSame) == keys.end()) return false;
    const auto members = membersOf(keys, counts);
    std::vector<Node> left;
    left.reserve(nodes.size() - place);
    for (const auto& [key, counted] : members) {
        left.push_back(*key);
        left.insert(left.end(), counted + 1, counted[1].next());
    }
    nodes.resize(place + 1);
    nodes[place].count = members.size();
    nodes[place].size = static_cast<std::uint32_t>(left.size());
    nodes.insert(nodes.end(), left.begin(), left.end());
    return true;
}

TapeBuilder::TapeBuilder(std::vector<Node>& nodes, Counts counts)
    : nodes_{&nodes}, counts_{counts} {
    constexpr std::size_t usualDepth = 8;
    levels_.reserve(usualDepth);
    levels_.emplace_back();
}

/// The one around a whole file counts as no depth.
bool TapeBuilder::isOutermostWrapper(Enclosure enclosure) const {
    return enclosure == Enclosure::wrapper && levels_.size() == 1;
}

bool TapeBuilder::open(Enclosure enclosure) {
    const int deeper = isOutermostWrapper(enclosure) ? 0 : 1;
    if (depth_ + deeper > maxDepth) return refuse("containers that nest too deep");
    if (!acceptValue()) return false;
    depth_ += deeper;
    levels_.push_back({.enclosure = enclosure,
                       .acceptsValue = enclosure != Enclosure::dictionary,
                       .place = nodes_->size(),
                       .lastKey = {}});
    if (enclosure == Enclosure::wrapper) return true;
    nodes_->emplace_back().kind = enclosure == Enclosure::array ? Kind::array : Kind::dictionary;
    return true;
}

bool TapeBuilder::close(Enclosure enclosure) {
    const Level level = levels_.back();
    const bool isOpen = levels_.size() > 1 && level.enclosure == enclosure;
    if (!isOpen) return refuse("an end without a start");
    if (enclosure != Enclosure::array && level.acceptsValue) {
        return refuse(enclosure == Enclosure::wrapper ? "an end where a value belongs"
                                                      : keyWithoutValue);
    }
    levels_.pop_back();
    depth_ -= isOutermostWrapper(enclosure) ? 0 : 1;
    return enclosure == Enclosure::wrapper || finish(level);
}

bool TapeBuilder::refuse(const char* reason) {
    refusal_ = reason;
    return false;
}

bool TapeBuilder::refuseKey(Enclosure enclosure) {
    return refuse(enclosure == Enclosure::dictionary ? keyWithoutValue
                                                     : "a key outside a dictionary");
}

bool TapeBuilder::refuseValue(Enclosure enclosure) {
    return refuse(enclosure == Enclosure::dictionary ? "a value without a key"
                                                     : "a second value where one belongs");
}

bool TapeBuilder::finish(const Level& level) {
    Node& head = (*nodes_)[level.place];
    head.count = level.count;
    head.size = static_cast<std::uint32_t>(nodes_->size() - level.place - 1);
    if (level.keysAscend) return true;
    // Where dictionaries nest, the inner ones are moved again with each outer one.
    const std::size_t most = movesAllowed + movesOfEach * nodes_->size();
    if (moved_ > most) return refuse("too many duplicate keys in one another");
    if (settleDuplicates(*nodes_, level.place, counts_)) moved_ += nodes_->size() - level.place;
    return true;
}

}  // namespace quillet::standin
