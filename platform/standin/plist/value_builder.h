// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/standin/plist/value.h"

namespace quillet::standin {

/// An unsigned integer as a value: signed where it fits.
Value integerValue(std::uint64_t number);

/// Puts one value together from the parts of a file, in their order, on a stack of its own.
///
/// Every part may be refused, with false: a second top-level value, a key where none belongs, a
/// value in a dictionary that awaits a key, a container deeper than maxDepth, an end that does not
/// match. The file is malformed then.
class ValueBuilder {
public:
    enum class Container { array, dictionary };

    bool add(Value value);
    bool addKey(std::string key);
    /// Takes memory for `capacity` elements at once.
    bool open(Container container, std::size_t capacity = 0);
    bool close(Container container);

    /// True until the first part has been added.
    bool isEmpty() const { return !root_ && open_.empty(); }
    /// True once the one value is complete.
    bool isComplete() const { return root_.has_value() && open_.empty(); }
    /// The value, which leaves the builder; nothing unless it is complete.
    std::optional<Value> take();

private:
    struct Level {
        Container container = Container::array;
        /// True between a key and its value.
        bool awaitsValue = false;
        Array elements;
        std::vector<Entry> entries;
    };

    bool acceptsValue() const;

    std::vector<Level> open_;
    std::optional<Value> root_;
};

}  // namespace quillet::standin
