// SPDX-License-Identifier: MIT
#pragma once

#include "platform/object.h"
#include "platform/string.h"

// The platform's Objective-C classes and functions that this folder sends messages to, with only
// the messages that it sends.

// Two types of messages differ on 32-bit devices: a flag is a number of one byte there. The names
// are the platform's, in the global namespace.
#if __LP64__
using BOOL = bool;
using CGFloat = double;
#else
using BOOL = signed char;
using CGFloat = float;
#endif

@class NSString;

__attribute__((objc_root_class))
@interface NSObject {
    Class isa;
}
+ (id)alloc;
+ (Class)class;
- (id)init;
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
BOOL class_respondsToSelector(Class cls, SEL selector);
void* calloc(size_t count, size_t size);
void free(void* storage);

}  // extern "C"

namespace quillet {

/// The object that `reference` refers to, to send it a message.
inline id object(const Object& reference) { return static_cast<id>(reference.instance()); }

/// A reference that shares `string`, which may be nil.
inline NSString shared(::NSString* string) {
    return NSString(reinterpret_cast<CFStringRef>(string));
}

}  // namespace quillet
