// SPDX-License-Identifier: MIT
#include "platform/property_list.h"

#include <string_view>
#include <utility>

#include "platform/standin/device/device.h"
#include "platform/standin/device/vibration_settings.h"
#include "platform/standin/files/file.h"
#include "platform/standin/runtime/dictionary_file.h"

namespace quillet {

using standin::adopt;
using standin::Answer;
using standin::ClassOf;
using standin::Device;
using standin::Instance;
using standin::send;
using standin::Told;
using standin::ValueInstance;
using standin::VibrationSettings;

namespace {

/// The dictionary in the file at `path`, nil when there is none to be read.
template <class Reference>
Reference readDictionary(const char* receiver, const char* operation, const NSString& path) {
    Device& device = Device::current();
    auto content = standin::readDictionary(device.below(standin::text(path)), device.complaints);
    constexpr bool isMutable = std::is_same_v<Reference, NSMutableDictionary>;
    auto* const instance = content ? new ValueInstance{std::move(*content), isMutable} : nullptr;
    const auto dictionary = adopt<Reference>(instance);
    if (instance != nullptr) instance->file = standin::text(path);
    device.trace.message(receiver, operation, path, Answer{dictionary});
    return dictionary;
}

/// What a write does to SpringBoard's vibration settings, for the journal.
class VibrationChange {
public:
    /// Before the write to the file at `path`.
    VibrationChange(Device& device, std::string_view path)
        : device_{device}, isTold_{device.journal.isKept() && path == VibrationSettings::path} {
        if (isTold_) before_ = VibrationSettings::in(device.below(path));
    }

    /// After it.
    void tell(const standin::Value& written) const {
        if (!isTold_) return;
        const auto now = VibrationSettings::in(std::get<standin::Dictionary>(written));
        device_.journal.add("vibration-settings", Told{"ring", now.ring},
                            Told{"silent", now.silent}, Told{"ring-before", before_.ring},
                            Told{"silent-before", before_.silent});
    }

private:
    Device& device_;
    bool isTold_;
    VibrationSettings before_;
};

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
        auto* const entry = value ? new ValueInstance{*value} : nullptr;
        const auto found = adopt<Object>(entry);
        if (entry != nullptr) {
            entry->file = instance.file;
            entry->key = standin::text(key);
        }
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
        const VibrationChange change{device, standin::text(path)};
        const bool written =
            standin::writeDictionary(device.below(standin::text(path)), instance.value);
        if (written) change.tell(instance.value);
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
