// SPDX-License-Identifier: MIT
#include "platform/standin/plist/value.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <utility>

#include "platform/standin/plist/tape.h"
#include "platform/standin/plist/tape_builder.h"
#include "platform/standin/plist/value_on_tape.h"

namespace quillet::standin {
namespace {

constexpr std::size_t emptyArray = 0;
constexpr std::size_t emptyDictionary = 1;

/// What all containers without content share.
const std::shared_ptr<Tape>& emptyTape() {
    static const auto tape = [] {
        auto made = std::make_shared<Tape>();
        made->nodes.resize(2);
        made->nodes[emptyArray].kind = Kind::array;
        made->nodes[emptyDictionary].kind = Kind::dictionary;
        return made;
    }();
    return tape;
}

std::shared_ptr<Tape> tapeOf(const std::vector<Value>& elements) {
    auto tape = std::make_shared<Tape>();
    Node& head = tape->nodes.emplace_back();
    head.kind = Kind::array;
    head.count = elements.size();
    for (const Value& element : elements) append(*tape, tape->nodes, element);
    tape->nodes.front().size = static_cast<std::uint32_t>(tape->nodes.size() - 1);
    return tape;
}

std::shared_ptr<Tape> tapeOf(const std::vector<Entry>& entries) {
    auto tape = std::make_shared<Tape>();
    Node& head = tape->nodes.emplace_back();
    head.kind = Kind::dictionary;
    head.count = entries.size();
    for (const auto& [key, value] : entries) {
        append(*tape, tape->nodes, Value{key});
        append(*tape, tape->nodes, value);
    }
    tape->nodes.front().size = static_cast<std::uint32_t>(tape->nodes.size() - 1);
    settleDuplicates(tape->nodes, 0, Counts::last);
    return tape;
}

}  // namespace

Container::Container(std::shared_ptr<Tape> tape, std::size_t place)
    : tape_{std::move(tape)}, place_{place} {}

const Node& Container::head() const { return tape_->nodes[place_]; }

std::size_t Container::size() const { return head().count; }

Array::Array() : Container{emptyTape(), emptyArray} {}

Array::Array(std::initializer_list<Value> elements) : Array{std::vector<Value>(elements)} {}

Array::Array(const std::vector<Value>& elements) : Container{tapeOf(elements), 0} {}

Array::Array(std::shared_ptr<Tape> tape, std::size_t place) : Container{std::move(tape), place} {}

std::vector<Value> Array::elements() const {
    std::vector<Value> elements;
    elements.reserve(size());
    for (const Node* node = &head() + 1; node != head().next(); node = node->next()) {
        elements.push_back(valueAt(tape_, *node));
    }
    return elements;
}

bool Array::operator==(const Array& other) const { return areEqual(head(), other.head()); }

Dictionary::Dictionary() : Container{emptyTape(), emptyDictionary} {}

Dictionary::Dictionary(std::initializer_list<Entry> entries)
    : Dictionary{std::vector<Entry>(entries)} {}

Dictionary::Dictionary(const std::vector<Entry>& entries) : Container{tapeOf(entries), 0} {}

Dictionary::Dictionary(std::shared_ptr<Tape> tape, std::size_t place)
    : Container{std::move(tape), place} {}

std::vector<Entry> Dictionary::entries() const {
    std::vector<Entry> entries;
    entries.reserve(size());
    for (const Node* key = &head() + 1; key != head().next(); key = (key + 1)->next()) {
        entries.push_back({std::string{key->text()}, valueAt(tape_, key[1])});
    }
    return entries;
}

const Node* Dictionary::keyNode(std::string_view key) const { return tape_->findKey(head(), key); }

std::optional<Value> Dictionary::find(std::string_view key) const {
    const Node* const found = keyNode(key);
    if (found == head().next()) return std::nullopt;
    return valueAt(tape_, found[1]);
}

/// Puts `nodes` in place of a part of the dictionary.
void Dictionary::replace(const Node* begin, const Node* end, const std::vector<Node>& nodes) {
    auto& all = tape_->nodes;
    const auto first = all.begin() + (begin - all.data());
    const auto kept = std::min<std::ptrdiff_t>(end - begin, std::ssize(nodes));
    if (end - begin != std::ssize(nodes)) tape_->forgetKeys();
    std::copy_n(nodes.begin(), kept, first);
    if (kept < end - begin) all.erase(first + kept, first + (end - begin));
    all.insert(first + kept, nodes.begin() + kept, nodes.end());
    all.front().size = static_cast<std::uint32_t>(all.size() - 1);
}

void Dictionary::set(std::string_view key, const Value& value) {
    makeOwn();
    std::vector<Node> nodes;
    const Node* const found = keyNode(key);
    const bool isNew = found == head().next();
    if (isNew) append(*tape_, nodes, Value{std::string{key}});
    append(*tape_, nodes, value);
    if (isNew) {
        ++tape_->nodes.front().count;
        replace(found, found, nodes);
    } else {
        replace(found + 1, found[1].next(), nodes);
    }
}

void Dictionary::erase(std::string_view key) {
    makeOwn();
    const Node* const found = keyNode(key);
    if (found == head().next()) return;
    --tape_->nodes.front().count;
    replace(found, found[1].next(), {});
}

/// Sees to it that the dictionary is all that is on its tape, and nobody else's.
void Dictionary::makeOwn() {
    if (place_ == 0 && tape_.use_count() == 1) return;
    auto tape = std::make_shared<Tape>();
    tape->append(tape->nodes, head());
    tape_ = std::move(tape);
    place_ = 0;
}

bool Dictionary::operator==(const Dictionary& other) const {
    return areEqual(head(), other.head());
}

}  // namespace quillet::standin
