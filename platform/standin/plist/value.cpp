// SPDX-License-Identifier: MIT
#include "platform/standin/plist/value.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <utility>

#include "platform/standin/plist/decimal.h"

namespace quillet::standin {
namespace {

constexpr std::string_view whiteSpace = " \t\n\v\f\r";

void skipAnyOf(std::string_view& text, std::string_view characters) {
    text.remove_prefix(std::min(text.find_first_not_of(characters), text.size()));
}

bool flagOf(std::string_view text) {
    skipAnyOf(text, whiteSpace);
    if (text.starts_with('+') || text.starts_with('-')) text.remove_prefix(1);
    skipAnyOf(text, "0");
    return !text.empty() && std::string_view{"YyTt123456789"}.find(text.front()) != text.npos;
}

float nearestFloat(std::string_view text) {
    skipAnyOf(text, whiteSpace);
    const auto number = readDecimal<float>(text);
    return number ? number->value : 0.0F;
}

float nearestFloat(double number) {
    using Limits = std::numeric_limits<float>;
    // Half a unit in the last place above the largest float: from here on, rounding gives infinity.
    constexpr double overflow = 0x1.ffffffp+127;
    if (std::abs(number) >= overflow) return number < 0 ? -Limits::infinity() : Limits::infinity();
    return static_cast<float>(std::clamp<double>(number, Limits::lowest(), Limits::max()));
}

struct Flag {
    std::optional<bool> operator()(const std::string& text) const { return flagOf(text); }
    std::optional<bool> operator()(bool flag) const { return flag; }
    std::optional<bool> operator()(std::int64_t number) const { return number != 0; }
    std::optional<bool> operator()(std::uint64_t number) const { return number != 0; }
    std::optional<bool> operator()(double number) const { return number != 0; }
    std::optional<bool> operator()(const Data&) const { return std::nullopt; }
    std::optional<bool> operator()(const Date&) const { return std::nullopt; }
    std::optional<bool> operator()(const Array&) const { return std::nullopt; }
    std::optional<bool> operator()(const Dictionary&) const { return std::nullopt; }
};

struct Number {
    std::optional<float> operator()(const std::string& text) const { return nearestFloat(text); }
    std::optional<float> operator()(bool flag) const { return flag ? 1.0F : 0.0F; }
    std::optional<float> operator()(std::int64_t number) const {
        return static_cast<float>(number);
    }
    std::optional<float> operator()(std::uint64_t number) const {
        return static_cast<float>(number);
    }
    std::optional<float> operator()(double number) const { return nearestFloat(number); }
    std::optional<float> operator()(const Data&) const { return std::nullopt; }
    std::optional<float> operator()(const Date&) const { return std::nullopt; }
    std::optional<float> operator()(const Array&) const { return std::nullopt; }
    std::optional<float> operator()(const Dictionary&) const { return std::nullopt; }
};

/// The entries by key, those with one key in their own order.
template <class Entries>
auto sortedByKey(Entries& entries) {
    std::vector<decltype(entries.data())> sorted;
    sorted.reserve(entries.size());
    for (auto& entry : entries) sorted.push_back(&entry);
    std::sort(sorted.begin(), sorted.end(), [](const Entry* a, const Entry* b) {
        const int order = a->key.compare(b->key);
        return order != 0 ? order < 0 : std::less<>{}(a, b);
    });
    return sorted;
}

/// True for the order in which most writers leave their keys, which spares the sorting.
bool keysAscend(const std::vector<Entry>& entries) {
    const auto descends = [](const Entry& a, const Entry& b) { return a.key >= b.key; };
    return std::adjacent_find(entries.begin(), entries.end(), descends) == entries.end();
}

void mergeDuplicates(std::vector<Entry>& entries) {
    if (keysAscend(entries)) return;
    std::vector<bool> merged(entries.size());
    Entry* first = nullptr;
    for (Entry* entry : sortedByKey(entries)) {
        if (first == nullptr || first->key != entry->key) {
            first = entry;
            continue;
        }
        first->value = std::move(entry->value);
        merged[static_cast<std::size_t>(entry - entries.data())] = true;
    }
    std::size_t index = 0;
    std::erase_if(entries, [&](const Entry&) { return merged[index++]; });
}

}  // namespace

Dictionary::Dictionary() = default;

Dictionary::Dictionary(std::initializer_list<Entry> entries)
    : Dictionary(std::vector<Entry>(entries)) {}

Dictionary::Dictionary(std::vector<Entry> entries) : entries_(std::move(entries)) {
    mergeDuplicates(entries_);
}

const Value* Dictionary::find(std::string_view key) const {
    for (const Entry& entry : entries_) {
        if (entry.key == key) return &entry.value;
    }
    return nullptr;
}

void Dictionary::set(std::string_view key, Value value) {
    for (Entry& entry : entries_) {
        if (entry.key == key) {
            entry.value = std::move(value);
            return;
        }
    }
    entries_.push_back({std::string{key}, std::move(value)});
}

void Dictionary::erase(std::string_view key) {
    std::erase_if(entries_, [&](const Entry& entry) { return entry.key == key; });
}

bool Dictionary::operator==(const Dictionary& other) const {
    if (entries_.size() != other.entries_.size()) return false;
    const auto ours = sortedByKey(entries_);
    const auto theirs = sortedByKey(other.entries_);
    return std::equal(ours.begin(), ours.end(), theirs.begin(),
                      [](const Entry* a, const Entry* b) { return *a == *b; });
}

std::optional<bool> boolValue(const Value& value) { return std::visit(Flag{}, value); }

std::optional<float> floatValue(const Value& value) { return std::visit(Number{}, value); }

}  // namespace quillet::standin
