// SPDX-License-Identifier: MIT
#pragma once

#include <stddef.h>
#include <stdint.h>

namespace quillet {

/// The platform's flag: one byte, zero is NO and anything else YES.
using BOOL = uint8_t;
inline constexpr BOOL NO = 0;
inline constexpr BOOL YES = 1;

/// Says that a reference takes over a count, which somebody else has taken.
struct Owned {};
/// Says that a reference takes no count: somebody else keeps the object while it is used.
struct Borrowed {};

/// A reference to one of the platform's objects, or to none ("nil").
///
/// One made by an `init…` function owns what was allocated: copying it retains the object,
/// destruction releases it. One made by any other function shares the object, and a platform that
/// keeps shared objects until the host's call returns need not count: no reference, nor a copy of
/// it, is used after that call.
///
/// The nil rule: any message may be sent to nil. It then does nothing, reaches nobody, and answers
/// NO, 0, 0.0 or nil. Every message declared in this folder keeps the rule, so callers need not
/// test for absence.
///
/// Thread: the host's main thread, as for everything in this folder.
class Object {
public:
    constexpr Object() noexcept = default;
    /// Takes over one count of `instance`, the platform's own pointer, which may be null. It is how
    /// a platform makes references of every kind: derived classes inherit it.
    Object(Owned, void* instance) noexcept : instance_{instance}, owns_{true} {}
    /// The same without a count.
    Object(Borrowed, void* instance) noexcept : instance_{instance} {}
    Object(const Object& other) noexcept;
    Object& operator=(const Object& other) noexcept;
    ~Object();

    /// False for nil.
    explicit operator bool() const noexcept { return instance_ != nullptr; }

    /// YES when the object, or the class if this refers to one, answers `selector` (for example
    /// "activate:").
    BOOL respondsToSelector(const char* selector) const;

    /// The object's reading as a flag. A number is YES when it is not zero. A string is YES when,
    /// after leading white space, an optional sign and leading zeros, it begins with Y, y, T, t or
    /// a digit 1 to 9. Objects of other kinds do not answer: the platform ends the process.
    BOOL boolValue() const;

    /// The object's reading as a single-precision number: a number's nearest value, or the decimal
    /// number that a string begins with (0.0 when it begins with none). Objects of other kinds do
    /// not answer: the platform ends the process.
    float floatValue() const;

    /// The platform's own pointer, valid as long as this reference. Null for nil.
    void* instance() const noexcept { return instance_; }

private:
    void* instance_ = nullptr;
    /// Whether a count of the object is this reference's.
    bool owns_ = false;
};

/// A class object of the host or of a loaded bundle.
class Class : public Object {
public:
    constexpr Class() noexcept = default;
    /// Shares `instance`, the platform's class object. Class objects live as long as the process.
    explicit Class(void* instance) noexcept;
};

/// Base of the bundle's own classes. An object of one is an object of the platform: the runtime's
/// word first, then the fields of the class. `new` is `alloc` and the constructor is `init`.
class NSObject {
public:
    /// For an object that has been allocated already.
    static void* operator new(size_t /*size*/, void* allocated) noexcept { return allocated; }

protected:
    /// `alloc` sent to `cls`: an object of `size` bytes, all zero but for the runtime's word, with
    /// one count for the caller. Never null: the platform ends a process that has no memory left.
    static void* alloc(const Class& cls, size_t size);
    /// Gives back the count that `alloc` gave.
    static void release(void* object) noexcept;

    /// The base class's `init`. Leaves the runtime's word as it is, as must every constructor.
    NSObject();
    ~NSObject() = default;

private:
    /// The class. Set by `alloc`, read by the runtime only.
    [[maybe_unused]] void* word_;
};

}  // namespace quillet
