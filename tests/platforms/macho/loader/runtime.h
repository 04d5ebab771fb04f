// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/object.h"
#include "tests/platforms/macho/loader/classes.h"
#include "tests/platforms/macho/loader/convention.h"

namespace quillet::macho {

/// An object as machine code knows it. It is one of
/// - the platform's own objects: the word of a reference to it (see Object::instance);
/// - a class of the platform, or what its `alloc` answers: objects of this runtime;
/// - a class of the module, or an instance of one.
using Id = void*;

/// The text of a selector. Selectors are compared by their text, never by their address.
using Selector = const char*;

/// A class of the module, known to the runtime for as long as this lives.
class LoadedClass {
public:
    explicit LoadedClass(ModuleClass cls);
    ~LoadedClass();
    LoadedClass(const LoadedClass&) = delete;
    LoadedClass& operator=(const LoadedClass&) = delete;

    /// A new instance, with one count: its fields, all zero, behind the address of its class.
    Id alloc();
    /// Counts up or down an instance that `alloc` gave. At its last release it is sent `dealloc`.
    void retain(Id instance) { ++instances_.at(instance).count; }
    void release(Id instance);
    /// Frees the instance.
    void dealloc(Id instance) { instances_.erase(instance); }
    std::size_t live() const { return instances_.size(); }

    const ModuleClass cls;
    /// The class object in the stand-in, which registerClass gave.
    void* registered = nullptr;

private:
    struct Allocated {
        std::unique_ptr<std::byte[]> storage;
        int count = 1;
    };

    std::map<Id, Allocated> instances_;
};

/// The loaded class whose class object is at `address`, or null.
LoadedClass* loadedClass(const void* address);

/// The class of an instance of one of the module's classes; null for any other object.
LoadedClass* classOfInstance(const void* object);

/// The class object that stands for a platform's class, or null when the runtime has none by that
/// name.
Id platformClass(const std::string& name);

/// The class of all the platform's class objects.
const void* platformMetaclass();

/// What `alloc` answers, for the `init…` that follows: nothing is allocated yet.
Id allocationOf(Id platformClass);

/// Releases at its end the objects that were autoreleased since its beginning. Pools nest.
class Pool {
public:
    Pool();
    ~Pool();
    Pool(const Pool&) = delete;
    Pool& operator=(const Pool&) = delete;

private:
    std::size_t begin_;
};

/// The object of `reference`, shared until the innermost pool ends: what a message answers whose
/// name promises no ownership.
Id autoreleased(const Object& reference);

/// The object of `reference`, with one count for the caller.
Id owned(const Object& reference);

/// A count for the caller. One that a pool holds is handed over rather than doubled, so that
/// objects which their user has retained go with their last release, and can be counted.
Id retain(Id object);
void release(Id object);

/// Calls the implementation of a message; nil answers 0, in every kind of register.
extern "C" void quilletSendMessage();

/// What a method hands over to send a message to its superclass.
struct Super {
    Id receiver;
    /// That of the method.
    const void* cls;
};

/// Calls the superclass's implementation of a message that has no arguments.
Id sendToSuper(const Super* super, Selector selector);

/// The code of the platform's own method for `selector` of an instance of `platformClass`. Ends the
/// process when there is none.
const void* platformInstanceMethod(Id platformClass, Selector selector);

/// Sends a message from outside the module.
template <class Answer, class... Arguments>
Answer sendMessage(Id receiver, Selector selector, Arguments... arguments) {
    static_assert(!passesWords || ((sizeof(Arguments) <= sizeof(void*)) && ...),
                  "passed in another way by the device");
    const auto function =
        reinterpret_cast<Answer (*)(Id, Selector, Arguments...)>(&quilletSendMessage);
    return callable(function)(receiver, selector, arguments...);
}

}  // namespace quillet::macho
