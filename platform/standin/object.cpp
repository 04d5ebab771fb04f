// SPDX-License-Identifier: MIT
#include "platform/object.h"

#include <cstring>

#include "platform/standin/device/device.h"
#include "platform/standin/plist/readings.h"

namespace quillet {

using standin::Answer;
using standin::Device;
using standin::Instance;
using standin::send;

namespace {

/// Sends `selector` to an object that answers with a `reading` of its value, if it has one.
template <class Type, class Reading>
Type read(const Object& receiver, const char* selector, Reading reading) {
    return send(receiver, [&](const Instance& instance) -> Type {
        const standin::Value* const value = instance.propertyListValue();
        const auto answer = value != nullptr ? reading(*value) : std::nullopt;
        if (!answer) standin::unrecognizedSelector(instance, selector);
        Device::current().trace.message(instance, selector, Answer{*answer});
        return *answer;
    });
}

}  // namespace

Object::Object(const Object& other) noexcept : instance_{other.instance_}, owns_{other.owns_} {
    if (owns_) send(*this, [](Instance& instance) { instance.retain(); });
}

Object& Object::operator=(const Object& other) noexcept {
    if (other.owns_) send(other, [](Instance& instance) { instance.retain(); });
    if (owns_) send(*this, [](Instance& instance) { instance.release(); });
    instance_ = other.instance_;
    owns_ = other.owns_;
    return *this;
}

Object::~Object() {
    if (owns_) send(*this, [](Instance& instance) { instance.release(); });
}

BOOL Object::respondsToSelector(const char* selector) const {
    return send(*this, [&](const Instance& instance) -> BOOL {
        const bool answer = instance.respondsToSelector(selector);
        Device::current().trace.message(instance, "respondsToSelector:", selector, Answer{answer});
        return answer;
    });
}

BOOL Object::boolValue() const { return read<BOOL>(*this, "boolValue", standin::boolValue); }

float Object::floatValue() const { return read<float>(*this, "floatValue", standin::floatValue); }

Class::Class(void* instance) noexcept : Object{Owned{}, instance} {
    send(*this, [](Instance& cls) { cls.retain(); });
}

void* NSObject::alloc(const Class& cls, size_t size) {
    void* const object = Device::current().storage.allocate(size);
    void* const word = cls.instance();
    std::memcpy(object, &word, sizeof word);
    return object;
}

void NSObject::release(void* /*object*/) noexcept {}

NSObject::NSObject() { Device::current().trace.message("<NSObject>", "init"); }

}  // namespace quillet
