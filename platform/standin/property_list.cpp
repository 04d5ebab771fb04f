// SPDX-License-Identifier: MIT
#include "platform/property_list.h"

#include <utility>

#include "platform/standin/device/device.h"
#include "platform/standin/files/file.h"
#include "platform/standin/runtime/dictionary_file.h"

namespace quillet {

using standin::adopt;
using standin::Answer;
using standin::ClassOf;
using standin::Device;
using standin::Instance;
using standin::send;
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
    device.trace.message(receiver, operation, path, Answer{dictionary});
    return dictionary;
}

void set(const NSMutableDictionary& dictionary, const char* operation, const Object& value,
         const NSString& key) {
    send<ValueInstance>(dictionary, [&](ValueInstance& instance) {
        Device::current().trace.message(ClassOf{instance}, operation, value, key);
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
    const bool flag = value != NO;
    Device::current().trace.message("NSNumber", "numberWithBool:", flag, Answer{flag});
    return adopt<NSNumber>(new ValueInstance{flag});
}

NSNumber NSNumber::numberWithFloat(float value) {
    Device::current().trace.message("NSNumber", "numberWithFloat:", value, Answer{value});
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
        const auto value = std::get<standin::Dictionary>(instance.value).find(standin::text(key));
        const auto found = adopt<Object>(value ? new ValueInstance{*value} : nullptr);
        Device::current().trace.message(ClassOf{instance}, "objectForKey:", key, Answer{found});
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
    Device::current().trace.message("NSMutableDictionary", "init", Answer{dictionary});
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
        const bool written =
            standin::writeDictionary(device.below(standin::text(path)), instance.value);
        device.trace.message(ClassOf{instance}, "writeToFile:atomically:", path, atomically != NO,
                             Answer{written});
        return written;
    });
}

NSFileManager NSFileManager::defaultManager() {
    Device& device = Device::current();
    Instance& manager = *device.shared.fileManager;
    device.trace.message("NSFileManager", "defaultManager", Answer{manager});
    return standin::share<NSFileManager>(&manager);
}

BOOL NSFileManager::fileExistsAtPath(NSString path) const {
    return send(*this, [&](const Instance& manager) -> BOOL {
        Device& device = Device::current();
        const bool exists = path && standin::mayExist(device.below(standin::text(path)));
        device.trace.message(manager, "fileExistsAtPath:", path, Answer{exists});
        return exists;
    });
}

}  // namespace quillet
