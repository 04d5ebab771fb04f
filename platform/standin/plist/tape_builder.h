// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "platform/standin/plist/tape.h"

namespace quillet::standin {

/// How deep arrays and dictionaries may nest in a file. What nests deeper is malformed.
inline constexpr int maxDepth = 512;

/// Which of several values for one key counts.
enum class Counts { first, last };

/// Leaves one entry for each key of the dictionary at `place`, at the place of the key's first one;
/// the dictionary is the last value of `nodes`. False when there was no other.
bool settleDuplicates(std::vector<Node>& nodes, std::size_t place, Counts counts);

/// Puts one value together from the parts of a file, in their order.
///
/// Every part may be refused, with false: a second value where one belongs, a key where none
/// belongs, a value in a dictionary that awaits a key, a container deeper than maxDepth, an end
/// that does not match, duplicate keys whose removal would take too long. The file is malformed
/// then.
class TapeBuilder {
public:
    /// A wrapper holds one value, and leaves no trace of itself.
    enum class Enclosure { wrapper, array, dictionary };

    TapeBuilder(std::vector<Node>& nodes, Counts counts);

    bool add(const Node& value) {
        if (!acceptValue()) return false;
        nodes_->push_back(value);
        return true;
    }
    bool addKey(const Node& key) {
        Level& level = levels_.back();
        const bool isDictionary = level.enclosure == Enclosure::dictionary;
        if (!isDictionary || level.acceptsValue) return refuseKey(level.enclosure);
        if (level.keysAscend) {
            level.keysAscend = level.count == 0 || level.lastKey < key.text();
            level.lastKey = key.text();
        }
        level.acceptsValue = true;
        nodes_->push_back(key);
        return true;
    }
    bool open(Enclosure enclosure);
    bool close(Enclosure enclosure);

    /// Why a part was refused, in a phrase.
    const char* refusal() const { return refusal_; }

    /// True once the one value is complete.
    bool isComplete() const { return levels_.size() == 1 && !levels_.back().acceptsValue; }

private:
    struct Level {
        Enclosure enclosure = Enclosure::wrapper;
        bool acceptsValue = true;
        /// True while the keys come in ascending order, as most writers leave them.
        bool keysAscend = true;
        std::size_t place = 0;
        std::size_t count = 0;
        std::string_view lastKey;
    };

    bool acceptValue() {
        Level& level = levels_.back();
        if (!level.acceptsValue) return refuseValue(level.enclosure);
        level.acceptsValue = level.enclosure == Enclosure::array;
        ++level.count;
        return true;
    }
    bool refuse(const char* reason);
    bool refuseKey(Enclosure enclosure);
    bool refuseValue(Enclosure enclosure);
    bool finish(const Level& level);
    bool isOutermostWrapper(Enclosure enclosure) const;

    std::vector<Node>* nodes_;
    Counts counts_;
    std::vector<Level> levels_;
    int depth_ = 0;
    /// Nodes that were in dictionaries with duplicate keys, counted in each.
    std::size_t moved_ = 0;
    const char* refusal_ = "";
};

}  // namespace quillet::standin
