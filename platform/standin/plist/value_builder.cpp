// SPDX-License-Identifier: MIT
#include "platform/standin/plist/value_builder.h"

#include <utility>

#include "platform/standin/plist/property_list.h"

namespace quillet::standin {

Value integerValue(std::uint64_t number) {
    if (std::in_range<std::int64_t>(number)) return static_cast<std::int64_t>(number);
    return number;
}

bool ValueBuilder::acceptsValue() const {
    if (open_.empty()) return !root_;
    const Level& level = open_.back();
    return level.container == Container::array || level.awaitsValue;
}

bool ValueBuilder::add(Value value) {
    if (!acceptsValue()) return false;
    if (open_.empty()) {
        root_ = std::move(value);
    } else if (Level& level = open_.back(); level.container == Container::array) {
        level.elements.push_back(std::move(value));
    } else {
        level.entries.back().value = std::move(value);
        level.awaitsValue = false;
    }
    return true;
}

bool ValueBuilder::addKey(std::string key) {
    if (open_.empty()) return false;
    Level& level = open_.back();
    if (level.container != Container::dictionary || level.awaitsValue) return false;
    level.entries.push_back({std::move(key), {}});
    level.awaitsValue = true;
    return true;
}

bool ValueBuilder::open(Container container, std::size_t capacity) {
    if (!acceptsValue() || open_.size() == static_cast<std::size_t>(maxDepth)) return false;
    Level& level = open_.emplace_back();
    level.container = container;
    if (container == Container::array) {
        level.elements.reserve(capacity);
    } else {
        level.entries.reserve(capacity);
    }
    return true;
}

bool ValueBuilder::close(Container container) {
    if (open_.empty() || open_.back().container != container) return false;
    Level level = std::move(open_.back());
    open_.pop_back();
    if (level.awaitsValue) return false;
    if (container == Container::array) return add(std::move(level.elements));
    return add(Dictionary{std::move(level.entries)});
}

std::optional<Value> ValueBuilder::take() {
    if (!isComplete()) return std::nullopt;
    return std::exchange(root_, std::nullopt);
}

}  // namespace quillet::standin
