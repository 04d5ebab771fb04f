// SPDX-License-Identifier: MIT
#include "platform/standin/device/trace.h"

#include <type_traits>
#include <utility>

#include "platform/standin/runtime/instance.h"

namespace quillet::standin {

namespace {

/// What stands for a property-list value: itself if it is plain, else a description.
struct Plain {
    const Instance& instance;
    TraceValue operator()(const auto& value) const {
        if constexpr (std::is_constructible_v<TraceValue, decltype(value)>) {
            return value;
        } else {
            return instance.description();
        }
    }
};

}  // namespace

TraceValue toTrace(const Object& object) { return objectTrace(object.instance()); }

TraceValue toTrace(std::string_view text) { return std::string{text}; }

TraceValue objectTrace(const void* object) {
    if (object == nullptr) return {};
    const Instance& instance = *instanceOf(object);
    const Value* const value = instance.propertyListValue();
    return value != nullptr ? std::visit(Plain{instance}, *value) : instance.description();
}

TraceValue pointerTrace(const void* pointer) {
    return pointer == nullptr ? TraceValue{} : TraceValue{"<pointer>"};
}

}  // namespace quillet::standin
