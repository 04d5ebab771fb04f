// SPDX-License-Identifier: MIT
#pragma once

// The platform's Objective-C classes, of whatever library or host, with only the messages that the
// bundle sends, and the functions of their runtime.

namespace quillet {

/// The types of messages that differ between processors: a flag is a number of one byte on 32-bit
/// devices.
template <bool is64Bit>
struct MessageTypes {
    using Flag = bool;
    using Real = double;
};

template <>
struct MessageTypes<false> {
    using Flag = signed char;
    using Real = float;
};

}  // namespace quillet

// The names are the platform's, in the global namespace.
using BOOL = quillet::MessageTypes<sizeof(void*) == 8>::Flag;
using CGFloat = quillet::MessageTypes<sizeof(void*) == 8>::Real;

@class NSString;

__attribute__((objc_root_class))
@interface NSObject {
    Class isa;
}
+ (id)alloc;
+ (Class)class;
+ (id (*)(id, SEL))instanceMethodForSelector:(SEL)selector;
- (id)init;
- (void)dealloc;
- (id)retain;
- (oneway void)release;
- (BOOL)respondsToSelector:(SEL)selector;
@end

@interface NSString : NSObject
+ (id)stringWithUTF8String:(const char*)utf8;
@end

@interface NSNumber : NSObject
+ (id)numberWithBool:(BOOL)value;
+ (id)numberWithFloat:(float)value;
- (BOOL)boolValue;
- (float)floatValue;
@end

@interface NSDictionary : NSObject
+ (id)dictionaryWithContentsOfFile:(NSString*)path;
- (id)initWithContentsOfFile:(NSString*)path;
- (id)objectForKey:(id)key;
@end

@interface NSMutableDictionary : NSDictionary
- (void)setValue:(id)value forKey:(NSString*)key;
- (void)setObject:(id)value forKey:(id)key;
- (BOOL)writeToFile:(NSString*)path atomically:(BOOL)atomically;
@end

@interface NSFileManager : NSObject
+ (id)defaultManager;
- (BOOL)fileExistsAtPath:(NSString*)path;
@end

@interface NSBundle : NSObject
+ (id)bundleForClass:(Class)cls;
- (NSString*)bundleIdentifier;
@end

@interface NSDate : NSObject
+ (id)dateWithTimeIntervalSinceNow:(double)seconds;
@end

@interface NSRunLoop : NSObject
+ (id)currentRunLoop;
- (void)runUntilDate:(NSDate*)limit;
@end

@interface NSThread : NSObject
+ (void)sleepForTimeInterval:(double)seconds;
@end

@interface FSSwitchPanel : NSObject
+ (id)sharedPanel;
- (void)stateDidChangeForSwitchIdentifier:(NSString*)identifier;
@end

@interface AVSystemController : NSObject
+ (id)sharedAVSystemController;
- (BOOL)getVolume:(float*)volume forCategory:(NSString*)category;
- (BOOL)setVolumeTo:(float)volume forCategory:(NSString*)category;
@end

@interface SBRingerHUDController : NSObject
+ (id)sharedInstance;
- (void)activate:(int)state;
@end

@interface SBMediaController : NSObject
+ (id)sharedInstance;
- (void)setRingerMuted:(BOOL)muted;
@end

extern "C" {

Class NSClassFromString(NSString* name);
SEL sel_registerName(const char* name);
Class object_getClass(id object);
BOOL class_isMetaClass(Class cls);
BOOL class_respondsToSelector(Class cls, SEL selector);

}  // extern "C"
