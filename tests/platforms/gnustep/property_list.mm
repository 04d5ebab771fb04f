// SPDX-License-Identifier: MIT
#include "tests/platforms/gnustep/messages.h"

namespace quillet::gnustep {

namespace {

/// What a file holds, if it has one of the two forms that a device's files have. Foundation's
/// dictionaries read older forms as well, and leave the binary one to its property-list reader.
struct Content {
    /// Nil if it is no dictionary.
    ::NSDictionary* dictionary;
    bool isBinary;
};

Content contentOf(::NSString* file) {
    ::NSData* const bytes = [::NSData dataWithContentsOfFile:file];
    if (bytes == nil) return {};
    NSPropertyListFormat form = NSPropertyListOpenStepFormat;
    const id list = [NSPropertyListSerialization propertyListWithData:bytes
                                                              options:NSPropertyListImmutable
                                                               format:&form
                                                                error:nullptr];
    const bool isBinary = form == NSPropertyListBinaryFormat_v1_0;
    const bool isKnown = isBinary || form == NSPropertyListXMLFormat_v1_0;
    return {isKnown && [list isKindOfClass:[::NSDictionary class]] ? list : nil, isBinary};
}

id dictionaryWithContentsOfFile(id self, SEL selector, ::NSString* path) {
    ::NSString* const file = below(path);
    const Content content = contentOf(file);
    id answer = nil;
    if (content.dictionary != nil) {
        answer = content.isBinary ? [self dictionaryWithDictionary:content.dictionary]
                                  : [self dictionaryWithContentsOfFile:file];
    }
    answered(traced(answer), receiver(self), selector, traced(path));
    return answer;
}

id initWithContentsOfFile(id self, SEL selector, ::NSString* path) {
    ::NSString* const file = below(path);
    const std::string cls = kindOf(self);
    const Content content = contentOf(file);
    id answer = nil;
    if (content.dictionary == nil) {
        [self release];
    } else {
        answer = content.isBinary ? [self initWithDictionary:content.dictionary]
                                  : [self initWithContentsOfFile:file];
    }
    if (answer == nil) initialiserGaveUp();
    answered(traced(answer), cls, selector, traced(path));
    return answer;
}

id init(id self, SEL selector) {
    const std::string cls = kindOf(self);
    const id answer = [self init];
    answered(traced(answer), cls, selector);
    return answer;
}

id objectForKey(id self, SEL selector, id key) {
    const id answer = [self objectForKey:key];
    answered(traced(answer), kindOf(self), selector, traced(key));
    return answer;
}

void setValue(id self, SEL selector, id value, ::NSString* key) {
    standin::Device::current().trace.message(kindOf(self), sel_getName(selector), traced(value),
                                             traced(key));
    [self setValue:value forKey:key];
}

void setObject(id self, SEL selector, id value, id key) {
    standin::Device::current().trace.message(kindOf(self), sel_getName(selector), traced(value),
                                             traced(key));
    [self setObject:value forKey:key];
}

/// Foundation's dictionaries write an older form, or, told to write XML, nothing at all for some
/// letters; its property-list writer does better.
BOOL writeToFile(id self, SEL selector, ::NSString* path, BOOL atomically) {
    ::NSData* const bytes =
        [NSPropertyListSerialization dataWithPropertyList:self
                                                   format:NSPropertyListXMLFormat_v1_0
                                                  options:0
                                                    error:nullptr];
    const BOOL answer = [bytes writeToFile:below(path) atomically:atomically];
    answered(answer != NO, kindOf(self), selector, traced(path), atomically != NO);
    return answer;
}

id numberWithBool(id self, SEL selector, BOOL value) {
    const id answer = [self numberWithBool:value];
    answered(traced(answer), receiver(self), selector, value != NO);
    return answer;
}

/// Foundation writes no more digits of a float than it needs to be read as a float again; the
/// device writes those of a double.
id numberWithFloat(id self, SEL selector, float value) {
    const id answer = [self numberWithDouble:double{value}];
    answered(traced(answer), receiver(self), selector, value);
    return answer;
}

id defaultManager(id self, SEL selector) {
    const id answer = [self defaultManager];
    answered(traced(answer), receiver(self), selector);
    return answer;
}

BOOL fileExistsAtPath(id self, SEL selector, ::NSString* path) {
    const BOOL answer = [self fileExistsAtPath:below(path)];
    answered(answer != NO, receiver(self), selector, traced(path));
    return answer;
}

}  // namespace

std::vector<Observed> propertyListMessages() {
    return {
        {"dictionaryWithContentsOfFile:", method(dictionaryWithContentsOfFile)},
        {"initWithContentsOfFile:", method(initWithContentsOfFile)},
        {"init", method(init)},
        {"objectForKey:", method(objectForKey)},
        {"setValue:forKey:", method(setValue)},
        {"setObject:forKey:", method(setObject)},
        {"writeToFile:atomically:", method(writeToFile)},
        {"numberWithBool:", method(numberWithBool)},
        {"numberWithFloat:", method(numberWithFloat)},
        {"defaultManager", method(defaultManager)},
        {"fileExistsAtPath:", method(fileExistsAtPath)},
    };
}

}  // namespace quillet::gnustep
