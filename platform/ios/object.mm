// SPDX-License-Identifier: MIT
#include "platform/object.h"

#include "platform/ios/references.h"

namespace quillet {

Object::Object(const Object& other) noexcept : instance_{other.instance_}, owns_{other.owns_} {
    if (owns_) [object(*this) retain];
}

Object& Object::operator=(const Object& other) noexcept {
    // Retained first: `other` may be this reference.
    if (other.owns_) [object(other) retain];
    if (owns_) [object(*this) release];
    instance_ = other.instance_;
    owns_ = other.owns_;
    return *this;
}

Object::~Object() {
    if (owns_) [object(*this) release];
}

BOOL Object::respondsToSelector(const char* selector) const {
    return [object(*this) respondsToSelector:sel_registerName(selector)] != NO;
}

BOOL Object::boolValue() const { return [object(*this) boolValue] != NO; }

float Object::floatValue() const { return [object(*this) floatValue]; }

Class::Class(void* instance) noexcept : Object{Borrowed{}, instance} {}

void* NSObject::alloc(const Class& cls, size_t /*size*/) { return [object(cls) alloc]; }

void NSObject::release(void* object) noexcept { [static_cast<id>(object) release]; }

NSObject::NSObject() {
    // What [super init] is in a method.
    [::NSObject
     instanceMethodForSelector:@selector(init)](reinterpret_cast<id>(this), @selector(init));
}

}  // namespace quillet
