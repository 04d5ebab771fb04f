// SPDX-License-Identifier: MIT
#import <Foundation/Foundation.h>

#include <cstdint>

#include "tests/readers/reader.h"

namespace quillet::test {

namespace {

std::string told(id value);

std::string toldNumber(NSNumber* number) {
    if (number == [NSNumber numberWithBool:YES]) return "true";
    if (number == [NSNumber numberWithBool:NO]) return "false";
    switch ([number objCType][0]) {
        case 'f':
        case 'd':
            return toldReal([number doubleValue]);
        case 'Q':
            return std::to_string(std::uint64_t{[number unsignedLongLongValue]});
        default:
            return std::to_string(std::int64_t{[number longLongValue]});
    }
}

std::string toldString(NSString* string) {
    NSData* const bytes = [string dataUsingEncoding:NSUTF8StringEncoding allowLossyConversion:YES];
    return toldText('s', static_cast<const char*>([bytes bytes]), [bytes length]);
}

std::string toldItems(NSArray* array) {
    std::vector<std::string> elements;
    for (NSUInteger i = 0; i < [array count]; ++i) {
        elements.push_back(told([array objectAtIndex:i]));
    }
    return toldArray(elements);
}

std::string toldEntries(NSDictionary* dictionary) {
    std::vector<std::pair<std::string, std::string>> entries;
    NSArray* const keys = [dictionary allKeys];
    for (NSUInteger i = 0; i < [keys count]; ++i) {
        const id key = [keys objectAtIndex:i];
        entries.emplace_back(told(key), told([dictionary objectForKey:key]));
    }
    return toldDictionary(std::move(entries));
}

std::string told(id value) {
    if ([value isKindOfClass:[NSNumber class]]) return toldNumber(value);
    if ([value isKindOfClass:[NSString class]]) return toldString(value);
    if ([value isKindOfClass:[NSArray class]]) return toldItems(value);
    if ([value isKindOfClass:[NSDictionary class]]) return toldEntries(value);
    if ([value isKindOfClass:[NSDate class]]) {
        return toldDate([value timeIntervalSinceReferenceDate]);
    }
    if ([value isKindOfClass:[NSData class]]) {
        return toldText('d', static_cast<const char*>([value bytes]), [value length]);
    }
    return "?";
}

}  // namespace

std::string reading(const std::string& bytes) {
    NSAutoreleasePool* const pool = [[NSAutoreleasePool alloc] init];
    std::string answer = "-";
    @try {
        NSPropertyListFormat form = NSPropertyListOpenStepFormat;
        const id value = [NSPropertyListSerialization
            propertyListWithData:[NSData dataWithBytes:bytes.data() length:bytes.size()]
                         options:NSPropertyListImmutable
                          format:&form
                           error:nullptr];
        const bool isKnown =
            form == NSPropertyListBinaryFormat_v1_0 || form == NSPropertyListXMLFormat_v1_0;
        if (value != nil && isKnown) answer = told(value);
    } @catch (NSException*) {
    }
    [pool release];
    return answer;
}

}  // namespace quillet::test
