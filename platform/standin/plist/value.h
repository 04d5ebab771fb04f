// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace quillet::standin {

class Tape;
struct Node;
class Value;
struct Entry;

struct Data {
    std::string bytes;
    bool operator==(const Data&) const = default;
};

/// Seconds since 2001-01-01T00:00:00Z; any number of a double.
struct Date {
    double seconds = 0;
    bool operator==(const Date&) const = default;
};

/// An archive's name for one of its objects.
struct UID {
    std::uint64_t number = 0;
    bool operator==(const UID&) const = default;
};

/// A container's place on a tape, which containers share: a copy costs no more than a pointer.
/// Those that share one are for one thread.
class Container {
public:
    /// The node that the container begins with, until it is changed.
    const Node& head() const;
    const std::shared_ptr<Tape>& tape() const { return tape_; }
    /// How many elements or entries there are.
    std::size_t size() const;

protected:
    Container(std::shared_ptr<Tape> tape, std::size_t place);

    std::shared_ptr<Tape> tape_;
    std::size_t place_;
};

/// Values in their order.
class Array : public Container {
public:
    Array();
    Array(std::initializer_list<Value> elements);
    explicit Array(const std::vector<Value>& elements);
    /// The array at `place` of the tape.
    Array(std::shared_ptr<Tape> tape, std::size_t place);

    std::vector<Value> elements() const;
    bool operator==(const Array& other) const;
};

/// Entries in the order in which they were put in; no key stands twice.
class Dictionary : public Container {
public:
    Dictionary();
    Dictionary(std::initializer_list<Entry> entries);
    /// Of several entries with one key the last one counts, at the place of the first.
    explicit Dictionary(const std::vector<Entry>& entries);
    /// The dictionary at `place` of the tape.
    Dictionary(std::shared_ptr<Tape> tape, std::size_t place);

    std::vector<Entry> entries() const;
    /// Nothing when there is no such entry.
    std::optional<Value> find(std::string_view key) const;
    /// Other dictionaries that share this one's tape stay as they are.
    void set(std::string_view key, const Value& value);
    void erase(std::string_view key);
    /// True for the same keys with equal values, in whatever order.
    bool operator==(const Dictionary& other) const;

private:
    const Node* keyNode(std::string_view key) const;
    void replace(const Node* begin, const Node* end, const std::vector<Node>& nodes);
    void makeOwn();
};

/// A property-list value: all eight kinds and the identifiers of archives, integers being signed,
/// or unsigned when they exceed the signed range.
class Value : public std::variant<bool, std::int64_t, std::uint64_t, double, std::string, Data,
                                  Date, UID, Array, Dictionary> {
public:
    using variant::variant;
    bool operator==(const Value&) const = default;
};

struct Entry {
    std::string key;
    Value value;
    bool operator==(const Entry&) const = default;
};

}  // namespace quillet::standin
