// SPDX-License-Identifier: MIT
#include "platform/ios/references.h"
#include "prefs/prefs_loader.h"

// A PrefsLoader of C++ is an object of this class: its fields are the instance variables, at the
// same places.

@interface PrefsLoader : NSObject {
    BOOL defaultVibrationPattern;
    BOOL vibrateWhenOff;
    BOOL vibrateWhenOn;
}
@property(assign) BOOL defaultVibrationPattern;
@property(assign) BOOL vibrateWhenOff;
@property(assign) BOOL vibrateWhenOn;
- (void)loadPreferences;
@end

@implementation PrefsLoader

@synthesize defaultVibrationPattern;
@synthesize vibrateWhenOff;
@synthesize vibrateWhenOn;

- (id)init {
    return reinterpret_cast<id>(new (self) quillet::PrefsLoader);
}

- (void)loadPreferences {
    reinterpret_cast<quillet::PrefsLoader*>(self)->loadPreferences();
}

- (void)dealloc {
    [super dealloc];
}

@end

namespace quillet {

Class PrefsLoader::classObject() { return Class([::PrefsLoader class]); }

}  // namespace quillet
