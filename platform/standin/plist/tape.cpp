// SPDX-License-Identifier: MIT
#include "platform/standin/plist/tape.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "platform/standin/plist/plain_text.h"

namespace quillet::standin {
namespace {

struct Pair {
    const Node* a;
    const Node* b;
};

void pushElements(std::vector<Pair>& open, Pair arrays) {
    const Node* b = arrays.b + 1;
    for (const Node* a = arrays.a + 1; a != arrays.a->next(); a = a->next()) {
        open.push_back({a, b});
        b = b->next();
    }
}

bool pushEntries(std::vector<Pair>& open, Pair dictionaries) {
    const auto ours = sortedKeys(*dictionaries.a);
    const auto theirs = sortedKeys(*dictionaries.b);
    for (std::size_t i = 0; i < ours.size(); ++i) {
        if (ours[i]->text() != theirs[i]->text()) return false;
        open.push_back({ours[i] + 1, theirs[i] + 1});
    }
    return true;
}

/// Whether the two are equal, as far as they are not containers with values that are pushed.
bool matches(std::vector<Pair>& open, Pair pair) {
    const auto& [a, b] = pair;
    if (a->kind != b->kind) return false;
    switch (a->kind) {
        case Kind::real:
        case Kind::date:
            return a->real == b->real;
        case Kind::string:
        case Kind::data:
            return a->text() == b->text();
        case Kind::array:
            if (a->count != b->count) return false;
            pushElements(open, pair);
            return true;
        case Kind::dictionary:
            return a->count == b->count && pushEntries(open, pair);
        default:
            return a->number == b->number;
    }
}

/// Goes through the dictionary up to the key, or to its end.
const Node* walkTo(const Node& dictionary, std::string_view key) {
    const Node* node = &dictionary + 1;
    while (node != dictionary.next() && node->text() != key) node = (node + 1)->next();
    return node;
}

}  // namespace

Node booleanNode(bool flag) {
    Node node;
    node.integer = flag ? 1 : 0;
    return node;
}

Node integerNode(std::int64_t number) {
    Node node;
    node.kind = Kind::integer;
    node.integer = number;
    return node;
}

Node numberNode(std::uint64_t number) {
    if (std::in_range<std::int64_t>(number)) return integerNode(static_cast<std::int64_t>(number));
    Node node;
    node.kind = Kind::unsignedInteger;
    node.number = number;
    return node;
}

Node realNode(Kind kind, double number) {
    Node node;
    node.kind = kind;
    node.real = number;
    return node;
}

Node uidNode(std::uint64_t number) {
    Node node;
    node.kind = Kind::uid;
    node.number = number;
    return node;
}

Node textNode(Kind kind, std::string_view text) {
    Node node = stringNode(text, kind == Kind::string && isPlain(text));
    node.kind = kind;
    return node;
}

std::vector<const Node*> sortedKeys(const Node& dictionary) {
    std::vector<const Node*> keys;
    keys.reserve(dictionary.count);
    for (const Node* key = &dictionary + 1; key != dictionary.next(); key = (key + 1)->next()) {
        keys.push_back(key);
    }
    std::sort(keys.begin(), keys.end(), [](const Node* a, const Node* b) {
        const int order = compareKeys(a->text(), b->text());
        return order != 0 ? order < 0 : a < b;
    });
    return keys;
}

bool areEqual(const Node& a, const Node& b) {
    std::vector<Pair> open{{&a, &b}};
    while (!open.empty()) {
        const Pair pair = open.back();
        open.pop_back();
        if (!matches(open, pair)) return false;
    }
    return true;
}

std::string_view Tape::keep(std::string_view text) {
    if (text.empty()) return {};
    auto* const copy = static_cast<char*>(texts_.allocate(text.size(), 1));
    std::memcpy(copy, text.data(), text.size());
    kept_ += text.size();
    return {copy, text.size()};
}

void Tape::append(std::vector<Node>& to, const Node& node) {
    for (const Node* copied = &node; copied != node.next(); ++copied) {
        Node& copy = to.emplace_back(*copied);
        size_ += sizeof copy;
        if (copy.kind != Kind::string && copy.kind != Kind::data) continue;
        copy.bytes = keep(copied->text()).data();
        size_ += copy.size;
    }
}

const Node* Tape::findKey(const Node& dictionary, std::string_view key) {
    constexpr std::size_t few = 32;
    constexpr int often = 16;
    if (dictionary.count <= few) return walkTo(dictionary, key);
    const auto place = static_cast<std::size_t>(&dictionary - nodes.data());
    if (std::exchange(keysOf_, place) != place) {
        asked_ = 0;
        keys_.clear();
    }
    asked_ = std::min(asked_ + 1, often);
    if (asked_ < often) return walkTo(dictionary, key);
    if (keys_.empty()) keys_ = sortedKeys(dictionary);
    const auto found = std::lower_bound(
        keys_.begin(), keys_.end(), key,
        [](const Node* a, std::string_view b) { return compareKeys(a->text(), b) < 0; });
    const bool isThere = found != keys_.end() && (*found)->text() == key;
    return isThere ? *found : dictionary.next();
}

std::size_t Tape::memory() const {
    // The resource takes its memory in ever larger pieces, up to twice of what is needed.
    return file_.capacity() + nodes.capacity() * sizeof(Node) + 2 * kept_ +
           keys_.capacity() * sizeof(void*);
}

}  // namespace quillet::standin
