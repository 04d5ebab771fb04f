// SPDX-License-Identifier: MIT
#include "tests/platforms/gnustep/messages.h"

#import <objc/message.h>

#include <cctype>
#include <map>
#include <string>
#include <string_view>

// The compiler turns every message into a call of objc_msg_lookup, which answers the method's
// function. The bundle is linked so that its calls, and only those, arrive here; see --wrap in
// ld(1). So nothing that Foundation does inside itself is seen or changed.

namespace quillet::gnustep {

namespace {

int held = 0;

id alloc(id self, SEL /*selector*/) {
    ++held;
    return [self alloc];
}

id retain(id self, SEL /*selector*/) {
    ++held;
    return [self retain];
}

void release(id self, SEL /*selector*/) {
    --held;
    [self release];
}

id baseInit(id self, SEL selector) {
    standin::Device::current().trace.message("<NSObject>", sel_getName(selector));
    return [::NSObject instanceMethodForSelector:selector](self, selector);
}

/// The bundle asks for the base class's `init`, and then calls it as a function.
IMP instanceMethodForSelector(id self, SEL /*selector*/, SEL asked) {
    return sel_isEqual(asked, @selector(init)) ? method(baseInit)
                                               : [self instanceMethodForSelector:asked];
}

BOOL respondsToSelector(id self, SEL selector, SEL asked) {
    const BOOL answer = [self respondsToSelector:asked];
    answered(answer != NO, receiver(self), selector, sel_getName(asked));
    return answer;
}

/// A string as Foundation must be given it: it skips any number of signs, and white space after
/// them, where the device skips one sign and then only zeros.
id withoutPrefix(::NSString* string) {
    const std::string text = [string UTF8String];
    std::size_t begin = text.find_first_not_of(" \t\n\v\f\r");
    if (begin != text.npos && (text[begin] == '+' || text[begin] == '-')) ++begin;
    begin = text.find_first_not_of('0', begin);
    const bool decides =
        begin < text.size() && std::isalnum(static_cast<unsigned char>(text[begin]));
    return decides ? [string substringFromIndex:begin] : @"";
}

BOOL boolValue(id self, SEL selector) {
    const bool isString = [self isKindOfClass:[::NSString class]] != NO;
    const BOOL answer = [isString ? withoutPrefix(self) : self boolValue];
    answered(answer != NO, receiver(self), selector);
    return answer;
}

float floatValue(id self, SEL selector) {
    const float answer = [self floatValue];
    answered(answer, receiver(self), selector);
    return answer;
}

id bundleForClass(id self, SEL selector, ::Class cls) {
    const id answer = [self bundleForClass:cls];
    answered(traced(answer), receiver(self), selector, traced(cls));
    return answer;
}

id bundleIdentifier(id self, SEL selector) {
    const id answer = [self bundleIdentifier];
    answered(traced(answer), receiver(self), selector);
    return answer;
}

/// For the message to nil: what the runtime itself runs leaves whatever was there as the float.
float nilFloatValue(id /*self*/, SEL /*selector*/) { return 0.0F; }

const std::map<std::string_view, IMP>& observed() {
    static const auto all = [] {
        std::map<std::string_view, IMP> functions;
        for (const auto& messages : {objectMessages(), propertyListMessages(), runLoopMessages()}) {
            for (const Observed& message : messages) {
                functions.emplace(message.selector, message.function);
            }
        }
        return functions;
    }();
    return all;
}

}  // namespace

std::vector<Observed> objectMessages() {
    return {
        {"alloc", method(alloc)},
        {"retain", method(retain)},
        {"release", method(release)},
        {"instanceMethodForSelector:", method(instanceMethodForSelector)},
        {"respondsToSelector:", method(respondsToSelector)},
        {"boolValue", method(boolValue)},
        {"floatValue", method(floatValue)},
        {"bundleForClass:", method(bundleForClass)},
        {"bundleIdentifier", method(bundleIdentifier)},
    };
}

int countsHeld() { return held; }

void initialiserGaveUp() { --held; }

extern "C" IMP __wrap_objc_msg_lookup(id receiver, SEL selector) {
    const std::string_view name = sel_getName(selector);
    if (receiver == nil) {
        return name == "floatValue" ? method(nilFloatValue) : objc_msg_lookup(receiver, selector);
    }
    const auto found = observed().find(name);
    return found != observed().end() ? found->second : objc_msg_lookup(receiver, selector);
}

}  // namespace quillet::gnustep
