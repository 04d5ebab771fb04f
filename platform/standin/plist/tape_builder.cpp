// SPDX-License-Identifier: MIT
#include "platform/standin/plist/tape_builder.h"

#include <algorithm>
#include <cstdint>
#include <utility>

namespace quillet::standin {
namespace {

struct Member {
    const Node* key;
    /// The key of the entry whose value counts, or null when an earlier entry has that key.
    const Node* counted;
};

std::vector<Member> membersOf(const Node& dictionary) {
    std::vector<Member> members;
    members.reserve(dictionary.count);
    for (const Node* key = &dictionary + 1; key != dictionary.next(); key = (key + 1)->next()) {
        members.push_back({key, key});
    }
    return members;
}

/// The members by key, those with one key in their own order.
std::vector<Member*> sortedByKey(std::vector<Member>& members) {
    std::vector<Member*> sorted;
    sorted.reserve(members.size());
    for (Member& member : members) sorted.push_back(&member);
    std::sort(sorted.begin(), sorted.end(), [](const Member* a, const Member* b) {
        const int order = a->key->text().compare(b->key->text());
        return order != 0 ? order < 0 : a->key < b->key;
    });
    return sorted;
}

/// Whether any two have one key; the first of them then tells which entry counts.
bool findDuplicates(std::vector<Member>& members, Counts counts) {
    bool isAny = false;
    Member* first = nullptr;
    for (Member* member : sortedByKey(members)) {
        if (first == nullptr || first->key->text() != member->key->text()) {
            first = member;
            continue;
        }
        isAny = true;
        member->counted = nullptr;
        if (counts == Counts::last) first->counted = member->key;
    }
    return isAny;
}

}  // namespace

void settleDuplicates(std::vector<Node>& nodes, std::size_t place, Counts counts) {
    auto members = membersOf(nodes[place]);
    if (!findDuplicates(members, counts)) return;
    std::vector<Node> left;
    std::size_t count = 0;
    for (const auto& [key, counted] : members) {
        if (counted == nullptr) continue;
        ++count;
        left.push_back(*key);
        left.insert(left.end(), counted + 1, counted[1].next());
    }
    nodes.resize(place + 1);
    nodes[place].count = count;
    nodes[place].size = static_cast<std::uint32_t>(left.size());
    nodes.insert(nodes.end(), left.begin(), left.end());
}

TapeBuilder::TapeBuilder(std::vector<Node>& nodes, Counts counts)
    : nodes_{&nodes}, counts_{counts}, levels_(1) {}

bool TapeBuilder::addKey(const Node& key) {
    Level& level = levels_.back();
    if (level.enclosure != Enclosure::dictionary || level.acceptsValue) return false;
    const std::string_view text = key.text();
    level.keysAscend = level.keysAscend && (level.count == 0 || level.lastKey < text);
    level.lastKey = text;
    level.acceptsValue = true;
    nodes_->push_back(key);
    return true;
}

/// The one around a whole file counts as no depth.
bool TapeBuilder::isOutermostWrapper(Enclosure enclosure) const {
    return enclosure == Enclosure::wrapper && levels_.size() == 1;
}

bool TapeBuilder::open(Enclosure enclosure) {
    const int deeper = isOutermostWrapper(enclosure) ? 0 : 1;
    if (depth_ + deeper > maxDepth || !acceptValue()) return false;
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
    const bool isWhole = enclosure == Enclosure::array || !level.acceptsValue;
    if (levels_.size() == 1 || level.enclosure != enclosure || !isWhole) return false;
    levels_.pop_back();
    depth_ -= isOutermostWrapper(enclosure) ? 0 : 1;
    if (enclosure != Enclosure::wrapper) finish(level);
    return true;
}

void TapeBuilder::finish(const Level& level) {
    Node& head = (*nodes_)[level.place];
    head.count = level.count;
    head.size = static_cast<std::uint32_t>(nodes_->size() - level.place - 1);
    if (!level.keysAscend) settleDuplicates(*nodes_, level.place, counts_);
}

}  // namespace quillet::standin
