// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory_resource>
#include <string>
#include <string_view>
#include <vector>

namespace quillet::standin {

enum class Kind : std::uint8_t {
    boolean,
    integer,
    unsignedInteger,
    real,
    date,
    uid,
    string,
    data,
    array,
    dictionary
};

/// One value on a tape; of a container only its head, which what it holds follows.
struct Node {
    Kind kind = Kind::boolean;
    /// Of a string: that it stands in XML as it is.
    bool isPlain = false;
    /// Of a string and of data: bytes. Of a container: nodes that it holds, at every depth.
    std::uint32_t size = 0;
    union {
        /// A boolean, as 0 or 1, or an integer.
        std::int64_t integer = 0;
        /// An unsigned integer or the number of an identifier.
        std::uint64_t number;
        /// A real number, or a date in seconds.
        double real;
        /// A string's or data's bytes, which the tape owns.
        const char* bytes;
        /// Elements of an array, entries of a dictionary.
        std::size_t count;
    };

    std::string_view text() const { return {bytes, size}; }
    bool isContainer() const { return kind >= Kind::array; }
    /// The node after this value and all that it holds.
    const Node* next() const { return this + 1 + (isContainer() ? size : 0); }
};

Node booleanNode(bool flag);
Node integerNode(std::int64_t number);
/// Of kind Kind::integer where the number fits there.
Node numberNode(std::uint64_t number);
Node realNode(Kind kind, double number);
Node uidNode(std::uint64_t number);
/// Shares `text`. Looks through a string for what XML cannot hold as it is.
Node textNode(Kind kind, std::string_view text);
/// A string of which that is known.
inline Node stringNode(std::string_view text, bool isPlain) {
    Node node;
    node.kind = Kind::string;
    node.isPlain = isPlain;
    node.size = static_cast<std::uint32_t>(text.size());
    node.bytes = text.data();
    return node;
}

/// Whether both values are of one kind and equal; dictionaries with the same entries in whatever
/// order are.
bool areEqual(const Node& a, const Node& b);

/// The order of keys: below, at or above 0 as `a` stands before, with or after `b`. The shorter one
/// comes first, as lengths are compared sooner than bytes.
inline int compareKeys(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return a.size() < b.size() ? -1 : 1;
    return a.compare(b);
}

/// A dictionary's keys, each followed by its value, in that order; of equal ones the earlier first.
std::vector<const Node*> sortedKeys(const Node& dictionary);

/// A property-list value as a row of nodes, in the order of a file: containers before what they
/// hold, each key before its value. No part of it points at another, so however deep a value nests,
/// it is made, copied, compared and destroyed without recursion.
class Tape {
public:
    Tape() = default;
    /// For the value in a file's bytes, which the nodes may share.
    explicit Tape(std::string file) : file_{std::move(file)}, size_{file_.size()} {}
    Tape(const Tape&) = delete;
    Tape& operator=(const Tape&) = delete;
    ~Tape() = default;

    std::vector<Node> nodes;

    /// The file's bytes. Their place does not change.
    std::string& file() { return file_; }
    /// A copy of `text` that lives as long as the tape.
    std::string_view keep(std::string_view text);
    /// Copies the value at `node`, of whatever tape, to the end of `to`, which are nodes for this
    /// tape.
    void append(std::vector<Node>& to, const Node& node);

    /// The key in a dictionary of this tape; the node after the dictionary when it has no such key.
    /// Goes through all keys, until a large dictionary has been asked often enough to sort them.
    const Node* findKey(const Node& dictionary, std::string_view key);
    /// To be called when keys change or move.
    void forgetKeys() { keysOf_ = noPlace; }

    /// What bounds are reckoned from: the bytes of the file and those of what was added to it.
    std::size_t size() const { return size_; }
    /// The memory that the tape takes.
    std::size_t memory() const;

private:
    static constexpr std::size_t noPlace = std::numeric_limits<std::size_t>::max();

    std::string file_;
    /// The dictionary that was asked for a key last, and how often since another was; its keys in
    /// their order, once they are sorted.
    std::size_t keysOf_ = noPlace;
    int asked_ = 0;
    std::vector<const Node*> keys_;
    std::pmr::monotonic_buffer_resource texts_;
    std::size_t size_ = 0;
    std::size_t kept_ = 0;
};

}  // namespace quillet::standin
