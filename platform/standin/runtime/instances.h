// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/standin/plist/value.h"
#include "platform/standin/runtime/instance.h"
#include "platform/string.h"

namespace quillet::standin {

/// A property-list value: string, number, dictionary and so on.
class ValueInstance final : public Instance {
public:
    /// `mutableDictionary` changes only the class of a dictionary.
    explicit ValueInstance(Value value, bool mutableDictionary = false)
        : value{std::move(value)}, mutableDictionary_{mutableDictionary} {}

    std::string className() const override;
    /// Of a dictionary with the number of its entries.
    std::string description() const override;
    const Value* propertyListValue() const override { return &value; }
    std::string origin() const override;

    Value value;
    /// The file of the device that it comes from, and the key there; empty when unknown.
    std::string file = {};
    std::string key = {};

private:
    bool mutableDictionary_;
};

/// A point in time, in seconds of the device's clock.
class DateInstance final : public Instance {
public:
    explicit DateInstance(double time) : time{time} {}

    std::string className() const override { return "NSDate"; }

    const double time;
};

/// An object of which there is nothing to tell but its class.
class PlainInstance final : public Instance {
public:
    explicit PlainInstance(std::string className) : className_{std::move(className)} {}

    std::string className() const override { return className_; }

private:
    std::string className_;
};

/// A class of the host or an instance of one, and what it responds to.
class HostInstance final : public Instance {
public:
    enum class Kind { cls, instance };

    HostInstance(std::string className, Kind kind, std::vector<std::string> selectors)
        : className_{std::move(className)}, kind_{kind}, selectors_{std::move(selectors)} {}

    std::string className() const override { return className_; }
    bool isClass() const override { return kind_ == Kind::cls; }
    bool respondsToSelector(std::string_view selector) const override;

private:
    std::string className_;
    Kind kind_;
    std::vector<std::string> selectors_;
};

/// The platform's objects of which a process has one each. A reference to one may outlive this.
struct SharedInstances {
    using Owned = std::unique_ptr<Instance, Release>;

    const Owned fileManager{new PlainInstance{"NSFileManager"}};
    const Owned runLoop{new PlainInstance{"NSRunLoop"}};
    const Owned switchPanel{new PlainInstance{"FSSwitchPanel"}};
    const Owned volumeController{new PlainInstance{"AVSystemController"}};
};

/// The characters of `string`, valid as long as it is; empty for nil.
std::string_view text(const Object& string);
std::string_view text(const void* string);

/// A string for the bundle.
NSString makeString(std::string_view text);

}  // namespace quillet::standin
