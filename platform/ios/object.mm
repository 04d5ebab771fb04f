// SPDX-License-Identifier: MIT
#include "platform/object.h"

#include "platform/ios/references.h"

namespace quillet {

Object::Object(const Object& other) noexcept : instance_{[object(other) retain]} {}

Object& Object::operator=(const Object& other) noexcept {
    // Retained first: `other` may be this reference.
    const id instance = [object(other) retain];
    [object(*this) release];
    instance_ = instance;
    return *this;
}

Object::~Object() { [object(*this) release]; }

BOOL Object::respondsToSelector(const char* selector) const {
    return [object(*this) respondsToSelector:sel_registerName(selector)] != NO;
}

BOOL Object::boolValue() const { return [object(*this) boolValue] != NO; }

float Object::floatValue() const { return [object(*this) floatValue]; }

Class::Class(void* instance) noexcept : Object{Owned{}, [static_cast<id>(instance) retain]} {}

void* NSObject::alloc(const Class& cls, size_t /*size*/) { return [object(cls) alloc]; }

void NSObject::release(void* object) noexcept { [static_cast<id>(object) release]; }

NSObject::NSObject() {
    // What [super init] is in a method.
    [::NSObject
     instanceMethodForSelector:@selector(init)](reinterpret_cast<id>(this), @selector(init));
}

}  // namespace quillet
