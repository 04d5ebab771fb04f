// SPDX-License-Identifier: MIT
#include "platform/standin/plist/object_table.h"

#include <algorithm>
#include <bit>
#include <compare>
#include <iterator>
#include <limits>
#include <numeric>

namespace quillet::standin {
namespace {

constexpr std::uint32_t notNumbered = std::numeric_limits<std::uint32_t>::max();

bool isText(const Node& node) { return node.kind == Kind::string || node.kind == Kind::data; }

/// What tells numbers of one kind from each other. Texts have the same only if they share their
/// bytes.
std::uint64_t bitsOf(const Node& node) {
    switch (node.kind) {
        case Kind::boolean:
        case Kind::integer:
            return static_cast<std::uint64_t>(node.integer);
        case Kind::real:
        case Kind::date:
            return std::bit_cast<std::uint64_t>(node.real);
        case Kind::string:
        case Kind::data:
            return reinterpret_cast<std::uintptr_t>(node.bytes);
        default:
            return node.number;
    }
}

std::strong_ordering byBits(const Node& a, const Node& b) {
    if (a.kind != b.kind) return a.kind <=> b.kind;
    if (isText(a) && a.size != b.size) return a.size <=> b.size;
    return bitsOf(a) <=> bitsOf(b);
}

std::strong_ordering byText(const Node& a, const Node& b) {
    if (a.kind != b.kind) return a.kind <=> b.kind;
    if (a.size != b.size) return a.size <=> b.size;
    return a.text() <=> b.text();
}

/// A container whose values are being numbered.
struct Level {
    const Node* next;
    const Node* end;
    bool isDictionary;
};

}  // namespace

ObjectTable::ObjectTable(const Node& root)
    : root_{&root}, first_(static_cast<std::size_t>(root.next() - &root)) {
    std::iota(first_.begin(), first_.end(), 0U);
    uniteEquals();
    numbers_.assign(first_.size(), notNumbered);
    numberAll();
}

/// Has each of the places, which are in their order, stand for the first one that is equal to it.
template <class Compare>
void ObjectTable::unite(std::vector<std::uint32_t>& places, Compare compare) {
    std::sort(places.begin(), places.end(), [&](std::uint32_t a, std::uint32_t b) {
        const auto order = compare(root_[a], root_[b]);
        return std::is_eq(order) ? a < b : std::is_lt(order);
    });
    std::uint32_t first = 0;
    for (std::size_t i = 0; i < places.size(); ++i) {
        if (i == 0 || std::is_neq(compare(root_[first], root_[places[i]]))) first = places[i];
        first_[places[i]] = first;
    }
}

void ObjectTable::uniteEquals() {
    std::vector<std::uint32_t> places;
    places.reserve(first_.size());
    std::copy_if(first_.begin(), first_.end(), std::back_inserter(places),
                 [this](std::uint32_t place) { return !root_[place].isContainer(); });
    unite(places, byBits);
    // However often a text is shared, it is compared with others but once.
    std::erase_if(places, [this](std::uint32_t place) {
        return first_[place] != place || !isText(root_[place]);
    });
    unite(places, byText);
    for (std::uint32_t& first : first_) first = first_[first];
}

void ObjectTable::number(const Node& node) {
    const std::uint32_t first = first_[placeOf(node)];
    if (numbers_[first] != notNumbered) return;
    numbers_[first] = static_cast<std::uint32_t>(objects_.size());
    objects_.push_back(&root_[first]);
}

void ObjectTable::numberAll() {
    std::vector<Level> open;
    const auto take = [&](const Node& node) {
        number(node);
        if (!node.isContainer()) return;
        const bool isDictionary = node.kind == Kind::dictionary;
        const Node* key = isDictionary ? &node + 1 : node.next();
        for (; key != node.next(); key = (key + 1)->next()) number(*key);
        open.push_back({&node + 1, node.next(), isDictionary});
    };
    take(*root_);
    while (!open.empty()) {
        Level& level = open.back();
        if (level.next == level.end) {
            open.pop_back();
            continue;
        }
        const Node& value = level.next[level.isDictionary ? 1 : 0];
        level.next = value.next();
        take(value);
    }
}

}  // namespace quillet::standin
