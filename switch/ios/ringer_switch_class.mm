// SPDX-License-Identifier: MIT
#include "platform/ios/objc_classes.h"
#include "switch/ringer_switch.h"

/// What a switch may answer to the switch framework, which has an answer of its own for the rest.
@protocol FSSwitchDataSource
@optional
- (quillet::FSSwitchState)stateForSwitchIdentifier:(NSString*)identifier;
- (void)applyState:(quillet::FSSwitchState)state forSwitchIdentifier:(NSString*)identifier;
- (void)applyActionForSwitchIdentifier:(NSString*)identifier;
- (NSString*)titleForSwitchIdentifier:(NSString*)identifier;
- (id)glyphImageDescriptorOfState:(quillet::FSSwitchState)state
                             size:(CGFloat)size
                            scale:(CGFloat)scale
              forSwitchIdentifier:(NSString*)identifier;
- (NSBundle*)bundleForSwitchIdentifier:(NSString*)identifier;
- (void)switchWasRegisteredForIdentifier:(NSString*)identifier;
- (void)switchWasUnregisteredForIdentifier:(NSString*)identifier;
- (BOOL)hasAlternateActionForSwitchIdentifier:(NSString*)identifier;
- (void)applyAlternateActionForSwitchIdentifier:(NSString*)identifier;
- (BOOL)switchWithIdentifierIsEnabled:(NSString*)identifier;
@end

/// The switch as the framework finds it: a class of the bundle's own module, so that
/// bundleForClass: answers the bundle.
__attribute__((visibility("default")))
@interface RingerSwitch : NSObject<FSSwitchDataSource>
@end

@implementation RingerSwitch

+ (void)load {
    quillet::RingerSwitch::load();
}

// The identifier is ignored, so nothing is sent to it, not even a retain.

- (quillet::FSSwitchState)stateForSwitchIdentifier:(NSString*)__attribute__((unused))identifier {
    return quillet::RingerSwitch::stateForSwitchIdentifier({});
}

- (void)applyState:(quillet::FSSwitchState)state
    forSwitchIdentifier:(NSString*)__attribute__((unused))identifier {
    quillet::RingerSwitch::applyState(state, {});
}

@end

namespace quillet {

Class RingerSwitch::classObject() { return Class([::RingerSwitch class]); }

}  // namespace quillet
