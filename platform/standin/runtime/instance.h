// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <type_traits>

#include "platform/object.h"
#include "platform/standin/plist/value.h"

namespace quillet::standin {

/// What a reference refers to on this platform: an object or a class, counted.
class Instance {
public:
    Instance();
    Instance(const Instance&) = delete;
    Instance& operator=(const Instance&) = delete;
    virtual ~Instance();

    /// The name of the class that this is, or is an instance of.
    virtual std::string className() const = 0;
    /// Whether this is the class itself.
    virtual bool isClass() const { return false; }
    /// As it stands in a trace: "SBMediaController" for a class, "<SBMediaController>" for an
    /// instance of it.
    virtual std::string description() const;
    virtual bool respondsToSelector(std::string_view /*selector*/) const { return false; }
    /// Where a value comes from and of which kind it is, in words for people; empty when unknown.
    virtual std::string origin() const { return {}; }
    /// Null for what is no property-list value. Owned by the instance.
    virtual const Value* propertyListValue() const { return nullptr; }

    void retain() { ++count_; }
    void release();

    /// How many instances there are in the process.
    static int live();

private:
    int count_ = 1;
};

/// Gives back the count that a pointer owns.
struct Release {
    void operator()(Instance* instance) const { instance->release(); }
};

/// The word that a reference holds for `instance`.
inline void* word(Instance& instance) { return &instance; }

/// The instance that a word stands for.
inline Instance* instanceOf(const void* word) {
    return static_cast<Instance*>(const_cast<void*>(word));
}

/// A reference that takes over one count of `instance`; nil for a null pointer.
template <class Reference>
Reference adopt(Instance* instance) {
    return Reference{Owned{}, instance == nullptr ? nullptr : word(*instance)};
}

/// A reference with a count of its own; nil for a null pointer.
template <class Reference>
Reference share(Instance* instance) {
    if (instance != nullptr) instance->retain();
    return adopt<Reference>(instance);
}

/// The nil rule, in its one place: `body` runs with the receiver's instance, or not at all when
/// the receiver is nil, and the answer is then NO, zero or nil.
template <class Kind = Instance, class Body>
auto send(const Object& receiver, Body body) {
    using Answer = std::invoke_result_t<Body, Kind&>;
    auto* const instance = static_cast<Kind*>(instanceOf(receiver.instance()));
    if constexpr (std::is_void_v<Answer>) {
        if (instance != nullptr) body(*instance);
    } else {
        return instance != nullptr ? body(*instance) : Answer{};
    }
}

/// Ends the process as an exception that nobody catches does: `receiver` does not answer.
[[noreturn]] void unrecognizedSelector(const Instance& receiver, const char* selector);

}  // namespace quillet::standin
