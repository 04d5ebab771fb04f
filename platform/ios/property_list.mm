// SPDX-License-Identifier: MIT
#include "platform/property_list.h"

#include "platform/ios/references.h"

namespace quillet {

NSNumber NSNumber::numberWithBool(BOOL value) {
    return sharing<NSNumber>([::NSNumber numberWithBool:value != NO]);
}

NSNumber NSNumber::numberWithFloat(float value) {
    return sharing<NSNumber>([::NSNumber numberWithFloat:value]);
}

NSDictionary NSDictionary::dictionaryWithContentsOfFile(NSString path) {
    return sharing<NSDictionary>([::NSDictionary dictionaryWithContentsOfFile:object(path)]);
}

NSDictionary NSDictionary::initWithContentsOfFile(NSString path) {
    return owning<NSDictionary>([[::NSDictionary alloc] initWithContentsOfFile:object(path)]);
}

Object NSDictionary::objectForKey(NSString key) const {
    return sharing<Object>([object(*this) objectForKey:object(key)]);
}

NSMutableDictionary NSMutableDictionary::dictionaryWithContentsOfFile(NSString path) {
    return sharing<NSMutableDictionary>(
        [::NSMutableDictionary dictionaryWithContentsOfFile:object(path)]);
}

NSMutableDictionary NSMutableDictionary::initWithContentsOfFile(NSString path) {
    return owning<NSMutableDictionary>(
        [[::NSMutableDictionary alloc] initWithContentsOfFile:object(path)]);
}

NSMutableDictionary NSMutableDictionary::init() {
    return owning<NSMutableDictionary>([[::NSMutableDictionary alloc] init]);
}

void NSMutableDictionary::setValue(Object value, NSString forKey) const {
    [object(*this) setValue:object(value) forKey:object(forKey)];
}

void NSMutableDictionary::setObject(Object value, NSString forKey) const {
    [object(*this) setObject:object(value) forKey:object(forKey)];
}

BOOL NSMutableDictionary::writeToFile(NSString path, BOOL atomically) const {
    return [object(*this) writeToFile:object(path) atomically:atomically != NO] != NO;
}

NSFileManager NSFileManager::defaultManager() {
    return sharing<NSFileManager>([::NSFileManager defaultManager]);
}

BOOL NSFileManager::fileExistsAtPath(NSString path) const {
    return [object(*this) fileExistsAtPath:object(path)] != NO;
}

}  // namespace quillet
