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

TraceValue toTrace(const Object& object) { return toTrace(ObjectAt{object.instance()}); }

TraceValue toTrace(std::string_view text) { return std::string{text}; }

TraceValue toTrace(ObjectAt place) {
    return place.object == nullptr ? TraceValue{} : toTrace(*instanceOf(place.object));
}

TraceValue toTrace(const Instance& instance) {
    const Value* const value = instance.propertyListValue();
    return value != nullptr ? std::visit(Plain{instance}, *value) : instance.description();
}

TraceValue toTrace(Pointer pointer) {
    return pointer.address == nullptr ? TraceValue{} : TraceValue{"<pointer>"};
}

std::string receiverName(const Instance& instance) { return instance.description(); }

std::string receiverName(ClassOf receiver) { return receiver.instance.className(); }

Trace::Lasting::Lasting(Trace* trace, std::optional<TraceRecord> record)
    : trace_{trace}, record_{std::move(record)} {
    if (trace_ != nullptr) ++trace_->depth_;
}

Trace::Lasting::~Lasting() {
    if (trace_ == nullptr) return;
    --trace_->depth_;
    if (trace_->endSink_) trace_->endSink_(*record_, trace_->clock_.now() - record_->time);
}

void Trace::setSink(Sink sink, EndSink endSink) {
    sink_ = std::move(sink);
    endSink_ = std::move(endSink);
}

}  // namespace quillet::standin
