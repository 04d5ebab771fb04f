// SPDX-License-Identifier: MIT
#include "platform/celestial.h"
#include "platform/flipswitch.h"
#include "platform/springboard_classes.h"
#include "tests/platforms/gnustep/values.h"

// The classes of the device that Foundation lacks. Each hands its messages to the stand-in's
// object of the same name, which does what is asked and records it.

using quillet::gnustep::standinString;
using quillet::standin::Device;
using quillet::standin::HostVariant;

namespace {

quillet::FSSwitchPanel panel;
quillet::AVSystemController volumes;
quillet::SBRingerHUDController indicatorClass;
quillet::SBRingerHUDController indicator;
quillet::SBMediaController mediaClass;
quillet::SBMediaController media;

}  // namespace

@interface FSSwitchPanel : NSObject
@end

@implementation FSSwitchPanel

+ (id)sharedPanel {
    static FSSwitchPanel* const instance = [[FSSwitchPanel alloc] init];
    panel = quillet::FSSwitchPanel::sharedPanel();
    return instance;
}

- (void)stateDidChangeForSwitchIdentifier:(NSString*)identifier {
    panel.stateDidChangeForSwitchIdentifier(standinString(identifier));
}

@end

@interface AVSystemController : NSObject
@end

@implementation AVSystemController

+ (id)sharedAVSystemController {
    static AVSystemController* const instance = [[AVSystemController alloc] init];
    volumes = quillet::AVSystemController::sharedAVSystemController();
    return instance;
}

- (BOOL)getVolume:(float*)volume forCategory:(NSString*)category {
    return volumes.getVolume(volume, standinString(category));
}

- (BOOL)setVolumeTo:(float)volume forCategory:(NSString*)category {
    return volumes.setVolumeTo(volume, standinString(category));
}

@end

// SpringBoard's classes in their variants, which the trace knows by the name that they share. What
// a variant lacks it does not respond to, and raises an exception when it is sent it.

@interface SBRingerHUDController : NSObject
@end

@implementation SBRingerHUDController

+ (id)sharedInstance {
    indicator = indicatorClass.sharedInstance();
    return indicator ? [[[self alloc] init] autorelease] : nil;
}

@end

@interface QuilletIndicatorAtClass : SBRingerHUDController
@end

/// It has no such method: it says that it answers the message, and forwards it.
@implementation QuilletIndicatorAtClass

+ (BOOL)respondsToSelector:(SEL)selector {
    return sel_isEqual(selector, @selector(activate:)) || [super respondsToSelector:selector];
}

+ (NSMethodSignature*)methodSignatureForSelector:(SEL)selector {
    return sel_isEqual(selector, @selector(activate:))
               ? [NSMethodSignature signatureWithObjCTypes:"v@:i"]
               : [super methodSignatureForSelector:selector];
}

+ (void)forwardInvocation:(NSInvocation*)invocation {
    int state = 0;
    [invocation getArgument:&state atIndex:2];
    indicatorClass.activate(state);
}

@end

@interface QuilletIndicatorAtInstance : SBRingerHUDController
@end

@implementation QuilletIndicatorAtInstance

- (void)activate:(int)state {
    indicator.activate(state);
}

@end

@interface SBMediaController : NSObject
@end

@implementation SBMediaController

+ (id)sharedInstance {
    media = mediaClass.sharedInstance();
    return media ? [[[self alloc] init] autorelease] : nil;
}

@end

@interface QuilletMutingController : SBMediaController
@end

@implementation QuilletMutingController

- (void)setRingerMuted:(BOOL)muted {
    media.setRingerMuted(muted);
}

@end

namespace quillet::gnustep {

namespace {

::Class indicatorVariant() {
    switch (Device::current().host.indicator) {
        case HostVariant::Indicator::class_:
            return [QuilletIndicatorAtClass class];
        case HostVariant::Indicator::instance:
            return [QuilletIndicatorAtInstance class];
        default:
            return [::SBRingerHUDController class];
    }
}

::Class mediaVariant() {
    return Device::current().host.media == HostVariant::Media::instance
               ? [QuilletMutingController class]
               : [::SBMediaController class];
}

}  // namespace

/// The bundle's calls of NSClassFromString arrive here; see --wrap in ld(1).
extern "C" ::Class __wrap_NSClassFromString(::NSString* name) {
    if ([name isEqualToString:@"SBRingerHUDController"]) {
        indicatorClass = SBRingerHUDController::classInHost();
        return indicatorClass ? indicatorVariant() : nil;
    }
    if ([name isEqualToString:@"SBMediaController"]) {
        mediaClass = SBMediaController::classInHost();
        return mediaClass ? mediaVariant() : nil;
    }
    const ::Class cls = NSClassFromString(name);
    const standin::TraceValue answer = traced(cls);
    Device::current().trace.function("NSClassFromString", traced(name), standin::Answer{answer});
    return cls;
}

}  // namespace quillet::gnustep
