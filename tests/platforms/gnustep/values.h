// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "platform/flipswitch.h"
#include "platform/standin/device/device.h"
#include "platform/standin/runtime/instances.h"

// After the platform's headers, whose YES and NO are macros here.
#import <Foundation/Foundation.h>

/// What the switch framework sends a switch.
@interface NSObject (QuilletSwitch)
- (quillet::FSSwitchState)stateForSwitchIdentifier:(NSString*)identifier;
- (void)applyState:(quillet::FSSwitchState)state forSwitchIdentifier:(NSString*)identifier;
@end

namespace quillet::gnustep {

/// The same characters as a string of Foundation and as one of the stand-in; nil stays nil.
::NSString* foundationString(CFStringRef string);
NSString standinString(::NSString* string);

/// The path below the device root of a path on the device.
::NSString* below(::NSString* devicePath);

/// An object of Foundation as the trace has it: null, flag, number, text or description.
standin::TraceValue traced(id object);

/// The class of an object as the trace names it: that of its cluster, for example "NSNumber".
std::string kindOf(id object);

/// The receiver of a message: "NSNumber" for the class, "<NSNumber>" for an instance.
std::string receiver(id object);

/// Records a message to Foundation and what it answered.
template <class Result, class... Arguments>
void answered(const Result& result, const std::string& receiver, SEL selector,
              const Arguments&... arguments) {
    standin::Device::current().trace.message(receiver, sel_getName(selector), arguments...,
                                             standin::Answer{result});
}

}  // namespace quillet::gnustep
