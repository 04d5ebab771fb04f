// SPDX-License-Identifier: MIT
#include "platform/property_list.h"

#include "platform/ios/objc_classes.h"

namespace quillet {

NSNumber NSNumber::numberWithBool(BOOL value) {
    return NSNumber([[::NSNumber numberWithBool:value != NO] retain]);
}

NSNumber NSNumber::numberWithFloat(float value) {
    return NSNumber([[::NSNumber numberWithFloat:value] retain]);
}

NSDictionary NSDictionary::dictionaryWithContentsOfFile(NSString path) {
    return NSDictionary([[::NSDictionary dictionaryWithContentsOfFile:object(path)] retain]);
}

NSDictionary NSDictionary::initWithContentsOfFile(NSString path) {
    return NSDictionary([[::NSDictionary alloc] initWithContentsOfFile:object(path)]);
}

Object NSDictionary::objectForKey(NSString key) const {
    return NSDictionary([[object(*this) objectForKey:object(key)] retain]);
}

NSMutableDictionary NSMutableDictionary::dictionaryWithContentsOfFile(NSString path) {
    return NSMutableDictionary(
        [[::NSMutableDictionary dictionaryWithContentsOfFile:object(path)] retain]);
}

NSMutableDictionary NSMutableDictionary::initWithContentsOfFile(NSString path) {
    return NSMutableDictionary([[::NSMutableDictionary alloc] initWithContentsOfFile:object(path)]);
}

NSMutableDictionary NSMutableDictionary::init() {
    return NSMutableDictionary([[::NSMutableDictionary alloc] init]);
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
    return NSFileManager([[::NSFileManager defaultManager] retain]);
}

BOOL NSFileManager::fileExistsAtPath(NSString path) const {
    return [object(*this) fileExistsAtPath:object(path)] != NO;
}

}  // namespace quillet
