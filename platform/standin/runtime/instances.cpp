// SPDX-License-Identifier: MIT
#include "platform/standin/runtime/instances.h"

#include <algorithm>
#include <variant>

namespace quillet::standin {

namespace {

/// The class of a property-list value.
struct ClassName {
    const char* operator()(const Array&) const { return "NSArray"; }
    const char* operator()(const Data&) const { return "NSData"; }
    const char* operator()(const Date&) const { return "NSDate"; }
    const char* operator()(const Dictionary&) const { return "NSDictionary"; }
    const char* operator()(UID) const { return "NSUID"; }
    const char* operator()(const std::string&) const { return "NSString"; }
    const char* operator()(auto /*number*/) const { return "NSNumber"; }
};

/// The kind of a property-list value.
struct KindName {
    const char* operator()(const Array&) const { return "an array"; }
    const char* operator()(const Data&) const { return "data"; }
    const char* operator()(const Date&) const { return "a date"; }
    const char* operator()(const Dictionary&) const { return "a dictionary"; }
    const char* operator()(UID) const { return "an identifier"; }
    const char* operator()(const std::string&) const { return "a string"; }
    const char* operator()(auto /*number*/) const { return "a number"; }
};

}  // namespace

std::string ValueInstance::origin() const {
    if (file.empty()) return {};
    return file + ": \"" + key + "\" is " + std::visit(KindName{}, value);
}

std::string ValueInstance::className() const {
    return mutableDictionary_ ? "NSMutableDictionary" : std::visit(ClassName{}, value);
}

std::string ValueInstance::description() const {
    const auto* const dictionary = std::get_if<Dictionary>(&value);
    if (dictionary == nullptr) return Instance::description();
    return "<" + className() + ": " + std::to_string(dictionary->size()) + " entries>";
}

bool HostInstance::respondsToSelector(std::string_view selector) const {
    return std::ranges::find(selectors_, selector) != selectors_.end();
}

std::string_view text(const Object& string) { return text(string.instance()); }

std::string_view text(const void* string) {
    if (string == nullptr) return {};
    return std::get<std::string>(*instanceOf(string)->propertyListValue());
}

NSString makeString(std::string_view text) {
    return adopt<NSString>(new ValueInstance{std::string{text}});
}

}  // namespace quillet::standin
