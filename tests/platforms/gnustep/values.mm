// SPDX-License-Identifier: MIT
#include "tests/platforms/gnustep/values.h"

#import <objc/runtime.h>

#include <array>

namespace quillet::gnustep {

using standin::TraceValue;

namespace {

/// Classes that stand for those derived from them: Foundation's clusters, SpringBoard's variants.
constexpr std::array known = {"NSMutableDictionary",
                              "NSDictionary",
                              "NSNumber",
                              "NSString",
                              "NSArray",
                              "NSData",
                              "NSDate",
                              "SBRingerHUDController",
                              "SBMediaController"};

bool isClass(id object) { return class_isMetaClass(object_getClass(object)); }

/// Foundation has one object each for true and for false; nothing else is a property-list boolean.
bool isFlag(id number) {
    return number == [::NSNumber numberWithBool:YES] || number == [::NSNumber numberWithBool:NO];
}

TraceValue tracedNumber(::NSNumber* number) {
    if (isFlag(number)) return [number boolValue] != NO;
    switch ([number objCType][0]) {
        case 'f':
        case 'd':
            return [number doubleValue];
        case 'Q':
            return std::uint64_t{[number unsignedLongLongValue]};
        default:
            return std::int64_t{[number longLongValue]};
    }
}

}  // namespace

::NSString* foundationString(CFStringRef string) {
    if (string == nullptr) return nil;
    return [::NSString stringWithUTF8String:std::string{standin::text(string)}.c_str()];
}

NSString standinString(::NSString* string) {
    return string == nil ? NSString{} : standin::makeString([string UTF8String]);
}

::NSString* below(::NSString* devicePath) {
    const auto path = standin::Device::current().below([devicePath UTF8String]);
    return [::NSString stringWithUTF8String:path.c_str()];
}

TraceValue traced(id object) {
    if (object == nil) return {};
    if ([object isKindOfClass:[::NSString class]]) return std::string{[object UTF8String]};
    if ([object isKindOfClass:[::NSNumber class]]) return tracedNumber(object);
    if ([object isKindOfClass:[::NSDictionary class]]) {
        return "<" + kindOf(object) + ": " + std::to_string([object count]) + " entries>";
    }
    return receiver(object);
}

std::string kindOf(id object) {
    const ::Class cls = isClass(object) ? static_cast<::Class>(object) : object_getClass(object);
    for (const char* const name : known) {
        if ([cls isSubclassOfClass:objc_getClass(name)]) return name;
    }
    return class_getName(cls);
}

std::string receiver(id object) {
    return isClass(object) ? kindOf(object) : "<" + kindOf(object) + ">";
}

}  // namespace quillet::gnustep
