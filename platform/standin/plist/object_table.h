// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "platform/standin/plist/tape.h"

namespace quillet::standin {

/// What a binary property list stores a value as: objects, which refer to one another by number.
/// They are in the order of the value, a container before what it holds, but all of a dictionary's
/// keys come before its values. Equal texts and numbers of one kind are one object.
class ObjectTable {
public:
    /// For the value at `root`, which must outlive the table.
    explicit ObjectTable(const Node& root);

    /// By number.
    const std::vector<const Node*>& objects() const { return objects_; }
    /// The number of the object that stands for a part of the value.
    std::size_t numberOf(const Node& node) const { return numbers_[first_[placeOf(node)]]; }

    /// The memory, in bytes, that it takes at most to make one for a value of so many nodes.
    static constexpr std::size_t memoryFor(std::size_t nodes) {
        return nodes * (sizeof(void*) + 3 * sizeof(std::uint32_t));
    }

private:
    std::size_t placeOf(const Node& node) const { return static_cast<std::size_t>(&node - root_); }
    template <class Compare>
    void unite(std::vector<std::uint32_t>& places, Compare compare);
    void uniteEquals();
    void number(const Node& node);
    void numberAll();

    const Node* root_;
    /// By place in the value: the first place with an equal node.
    std::vector<std::uint32_t> first_;
    /// By place, where that is the first: the object's number.
    std::vector<std::uint32_t> numbers_;
    std::vector<const Node*> objects_;
};

}  // namespace quillet::standin
