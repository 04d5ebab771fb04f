// SPDX-License-Identifier: MIT
#include "platform/property_list.h"

#include <filesystem>
#include <utility>

#include "platform/standin/device/device.h"
#include "platform/standin/plist/property_list.h"
#include "platform/standin/runtime/instance.h"

namespace quillet {

using standin::adopt;
using standin::Device;
using standin::Instance;
using standin::send;
using standin::Value;
using standin::ValueInstance;

namespace {

/// The dictionary in the file at `path`, nil when there is none to be read.
template <class Reference>
Reference readDictionary(const char* receiver, const char* operation, const NSString& path) {
    Device& device = Device::current();
    auto content = standin::readDictionary(device.below(standin::text(path)));
    constexpr bool isMutable = std::is_same_v<Reference, NSMutableDictionary>;
    const auto dictionary =
        adopt<Reference>(content ? new ValueInstance{std::move(*content), isMutable} : nullptr);
    device.trace.answer(dictionary, receiver, operation, path);
    return dictionary;
}

void set(const NSMutableDictionary& dictionary, const char* operation, const Object& value,
         const NSString& key) {
    send<ValueInstance>(dictionary, [&](ValueInstance& instance) {
        Device::current().trace.call(instance.kind(), operation, value, key);
        auto& entries = std::get<standin::Dictionary>(instance.value);
        if (value) {
            entries.set(standin::text(key),
                        *standin::instanceOf(value.instance())->propertyListValue());
        } else {
            entries.erase(standin::text(key));
        }
    });
}

}  // namespace

NSNumber NSNumber::numberWithBool(BOOL value) {
    Device::current().trace.answer(value != NO, "NSNumber", "numberWithBool:", value != NO);
    return adopt<NSNumber>(new ValueInstance{value != NO});
}

NSNumber NSNumber::numberWithFloat(float value) {
    Device::current().trace.answer(value, "NSNumber", "numberWithFloat:", value);
    return adopt<NSNumber>(new ValueInstance{double{value}});
}

NSDictionary NSDictionary::dictionaryWithContentsOfFile(NSString path) {
    return readDictionary<NSDictionary>("NSDictionary", "dictionaryWithContentsOfFile:", path);
}

NSDictionary NSDictionary::initWithContentsOfFile(NSString path) {
    return readDictionary<NSDictionary>("NSDictionary", "initWithContentsOfFile:", path);
}

Object NSDictionary::objectForKey(NSString key) const {
    return send<ValueInstance>(*this, [&](const ValueInstance& instance) -> Object {
        const Value* const value =
            std::get<standin::Dictionary>(instance.value).find(standin::text(key));
        const auto found = adopt<Object>(value ? new ValueInstance{*value} : nullptr);
        Device::current().trace.answer(found, instance.kind(), "objectForKey:", key);
        return found;
    });
}

NSMutableDictionary NSMutableDictionary::dictionaryWithContentsOfFile(NSString path) {
    return readDictionary<NSMutableDictionary>("NSMutableDictionary",
                                               "dictionaryWithContentsOfFile:", path);
}

NSMutableDictionary NSMutableDictionary::initWithContentsOfFile(NSString path) {
    return readDictionary<NSMutableDictionary>("NSMutableDictionary",
                                               "initWithContentsOfFile:", path);
}

NSMutableDictionary NSMutableDictionary::init() {
    const auto dictionary =
        adopt<NSMutableDictionary>(new ValueInstance{standin::Dictionary{}, true});
    Device::current().trace.answer(dictionary, "NSMutableDictionary", "init");
    return dictionary;
}

void NSMutableDictionary::setValue(Object value, NSString forKey) const {
    set(*this, "setValue:forKey:", value, forKey);
}

void NSMutableDictionary::setObject(Object value, NSString forKey) const {
    set(*this, "setObject:forKey:", value, forKey);
}

BOOL NSMutableDictionary::writeToFile(NSString path, BOOL atomically) const {
    return send<ValueInstance>(*this, [&](const ValueInstance& instance) -> BOOL {
        Device& device = Device::current();
        const bool written = standin::writeFileAtomically(
            device.below(standin::text(path)), standin::writePropertyList(instance.value));
        device.trace.answer(written, instance.kind(), "writeToFile:atomically:", path,
                            atomically != NO);
        return written;
    });
}

NSFileManager NSFileManager::defaultManager() {
    static standin::SharedInstance manager{"<NSFileManager>"};
    Device::current().trace.answer(manager.description(), "NSFileManager", "defaultManager");
    return standin::share<NSFileManager>(&manager);
}

BOOL NSFileManager::fileExistsAtPath(NSString path) const {
    return send(*this, [&](const Instance& manager) -> BOOL {
        Device& device = Device::current();
        std::error_code error;
        const bool exists = std::filesystem::exists(device.below(standin::text(path)), error);
        device.trace.answer(exists, manager.description(), "fileExistsAtPath:", path);
        return exists;
    });
}

}  // namespace quillet
