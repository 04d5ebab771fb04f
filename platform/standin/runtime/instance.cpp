// SPDX-License-Identifier: MIT
#include "platform/standin/runtime/instance.h"

namespace quillet::standin {

namespace {

int liveInstances = 0;

/// The class of a property-list value.
struct Kind {
    const char* operator()(const Array&) const { return "NSArray"; }
    const char* operator()(const Data&) const { return "NSData"; }
    const char* operator()(const Date&) const { return "NSDate"; }
    const char* operator()(const Dictionary&) const { return "NSDictionary"; }
    const char* operator()(const std::string&) const { return "NSString"; }
    const char* operator()(auto /*number*/) const { return "NSNumber"; }
};

}  // namespace

Instance::Instance() { ++liveInstances; }

Instance::~Instance() { --liveInstances; }

int Instance::live() { return liveInstances; }

void Instance::release() {
    if (--count_ == 0) delete this;
}

std::string ValueInstance::kind() const {
    return mutableDictionary_ ? "NSMutableDictionary" : std::visit(Kind{}, value);
}

std::string ValueInstance::description() const {
    std::string description = "<" + kind();
    if (const auto* dictionary = std::get_if<Dictionary>(&value)) {
        description += ": " + std::to_string(dictionary->entries().size()) + " entries";
    }
    return description + ">";
}

std::string_view text(const Object& string) { return text(string.instance()); }

std::string_view text(const void* string) {
    if (string == nullptr) return {};
    return std::get<std::string>(*instanceOf(string)->propertyListValue());
}

NSString makeString(std::string_view text) {
    auto* const instance = new ValueInstance{std::string{text}};
    const NSString string{static_cast<CFStringRef>(word(*instance))};
    instance->release();
    return string;
}

}  // namespace quillet::standin
