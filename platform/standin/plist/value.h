// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace quillet::standin {

class Value;
struct Entry;

struct Data {
    std::string bytes;
    bool operator==(const Data&) const = default;
};

/// Seconds since 2001-01-01T00:00:00Z, within the years 1 to 9999.
struct Date {
    double seconds = 0;
    bool operator==(const Date&) const = default;
};

using Array = std::vector<Value>;

/// Entries in the order in which they were put in; no key stands twice.
class Dictionary {
public:
    Dictionary();
    Dictionary(std::initializer_list<Entry> entries);
    /// Of several entries with one key the last one counts, at the place of the first.
    explicit Dictionary(std::vector<Entry> entries);

    /// Owned by the dictionary, until it is changed; null when there is none.
    const Value* find(std::string_view key) const;
    void set(std::string_view key, Value value);
    void erase(std::string_view key);

    const std::vector<Entry>& entries() const { return entries_; }
    /// True for the same keys with equal values, in whatever order.
    bool operator==(const Dictionary&) const;

private:
    std::vector<Entry> entries_;
};

/// A property-list value: all eight kinds, integers being signed, or unsigned when they exceed
/// the signed range.
class Value : public std::variant<bool, std::int64_t, std::uint64_t, double, std::string, Data,
                                  Date, Array, Dictionary> {
public:
    using variant::variant;
    bool operator==(const Value&) const = default;
};

struct Entry {
    std::string key;
    Value value;
    bool operator==(const Entry&) const = default;
};

/// The value's reading as a flag; nothing for kinds that have none. See Object::boolValue.
std::optional<bool> boolValue(const Value& value);

/// The value's reading as a number; nothing for kinds that have none. See Object::floatValue.
std::optional<float> floatValue(const Value& value);

}  // namespace quillet::standin
