// SPDX-License-Identifier: MIT
// In Objective-C without the C++: gcc's C++ runtime cannot tell one exception of Foundation from
// another.
#include "tests/platforms/gnustep/host.h"

#include <stdio.h>
#include <stdlib.h>

#import <Foundation/Foundation.h>

void runAsHost(void (*call)(void* context), void* context) {
    NSAutoreleasePool* const pool = [[NSAutoreleasePool alloc] init];
    @try {
        call(context);
    } @catch (NSException* exception) {
        fprintf(stderr, "uncaught exception %s: %s\n", [[exception name] UTF8String],
                [[exception reason] UTF8String]);
        abort();
    }
    [pool drain];
}
