// SPDX-License-Identifier: MIT
#include "tests/platforms/macho/loader/platform_methods.h"

#include <functional>
#include <map>
#include <type_traits>

#include "platform/bundle.h"
#include "platform/celestial.h"
#include "platform/flipswitch.h"
#include "platform/property_list.h"
#include "platform/run_loop.h"
#include "platform/springboard_classes.h"
#include "platform/standin/runtime/instances.h"
#include "tests/platforms/macho/loader/convention.h"
#include "tests/platforms/macho/loader/runtime.h"

namespace quillet::macho {

namespace {

/// A reference of its own to one of the platform's objects, nil for nil.
template <class Reference>
Reference as(Id object) {
    if constexpr (std::is_same_v<Reference, NSString>) {
        return NSString(static_cast<CFStringRef>(object));
    } else {
        return standin::share<Reference>(standin::instanceOf(object));
    }
}

/// What the stand-in takes `cls` for.
Class standinClass(Id cls) {
    const LoadedClass* const loaded = loadedClass(cls);
    return Class{loaded == nullptr ? cls : loaded->registered};
}

using Methods = std::map<std::string, const void*, std::less<>>;

// Each method sends the same message by way of the headers in platform/. A flag is answered as an
// int: on arm64 the module reads 32 bits of it, of which a function of Linux sets only eight.

const Methods foundationMethods = {
    {"+[NSString stringWithUTF8String:]",
     code([](Id, Selector, const char* utf8) { return autoreleased(NSString(utf8)); })},
    {"+[NSNumber numberWithBool:]",
     code([](Id, Selector, BOOL value) { return autoreleased(NSNumber::numberWithBool(value)); })},
    {"+[NSNumber numberWithFloat:]", code([](Id, Selector, float value) {
         return autoreleased(NSNumber::numberWithFloat(value));
     })},
    {"+[NSFileManager defaultManager]",
     code([](Id, Selector) { return autoreleased(NSFileManager::defaultManager()); })},
    {"-[NSFileManager fileExistsAtPath:]", code([](Id self, Selector, Id path) {
         return int{as<NSFileManager>(self).fileExistsAtPath(as<NSString>(path))};
     })},
    {"+[NSBundle bundleForClass:]", code([](Id, Selector, Id cls) {
         return autoreleased(NSBundle::bundleForClass(standinClass(cls)));
     })},
    {"-[NSBundle bundleIdentifier]",
     code([](Id self, Selector) { return autoreleased(as<NSBundle>(self).bundleIdentifier()); })},
    {"+[NSDate dateWithTimeIntervalSinceNow:]", code([](Id, Selector, double seconds) {
         return autoreleased(NSDate::dateWithTimeIntervalSinceNow(seconds));
     })},
    {"+[NSRunLoop currentRunLoop]",
     code([](Id, Selector) { return autoreleased(NSRunLoop::currentRunLoop()); })},
    {"-[NSRunLoop runUntilDate:]", code([](Id self, Selector, Id limit) {
         as<NSRunLoop>(self).runUntilDate(as<NSDate>(limit));
     })},
    {"+[NSThread sleepForTimeInterval:]",
     code([](Id, Selector, double seconds) { NSThread::sleepForTimeInterval(seconds); })},
};

const Methods dictionaryMethods = {
    {"+[NSDictionary alloc]", code([](Id self, Selector) { return allocationOf(self); })},
    {"+[NSDictionary dictionaryWithContentsOfFile:]", code([](Id, Selector, Id path) {
         return autoreleased(NSDictionary::dictionaryWithContentsOfFile(as<NSString>(path)));
     })},
    {"-[allocated NSDictionary initWithContentsOfFile:]", code([](Id, Selector, Id path) {
         return owned(NSDictionary::initWithContentsOfFile(as<NSString>(path)));
     })},
    {"-[NSDictionary objectForKey:]", code([](Id self, Selector, Id key) {
         return autoreleased(as<NSDictionary>(self).objectForKey(as<NSString>(key)));
     })},
    {"+[NSMutableDictionary alloc]", code([](Id self, Selector) { return allocationOf(self); })},
    {"+[NSMutableDictionary dictionaryWithContentsOfFile:]", code([](Id, Selector, Id path) {
         return autoreleased(NSMutableDictionary::dictionaryWithContentsOfFile(as<NSString>(path)));
     })},
    {"-[allocated NSMutableDictionary initWithContentsOfFile:]", code([](Id, Selector, Id path) {
         return owned(NSMutableDictionary::initWithContentsOfFile(as<NSString>(path)));
     })},
    {"-[allocated NSMutableDictionary init]",
     code([](Id, Selector) { return owned(NSMutableDictionary::init()); })},
    {"-[NSMutableDictionary setValue:forKey:]", code([](Id self, Selector, Id value, Id key) {
         as<NSMutableDictionary>(self).setValue(as<Object>(value), as<NSString>(key));
     })},
    {"-[NSMutableDictionary setObject:forKey:]", code([](Id self, Selector, Id value, Id key) {
         as<NSMutableDictionary>(self).setObject(as<Object>(value), as<NSString>(key));
     })},
    {"-[NSMutableDictionary writeToFile:atomically:]",
     code([](Id self, Selector, Id path, BOOL atomically) {
         return int{as<NSMutableDictionary>(self).writeToFile(as<NSString>(path), atomically)};
     })},
};

/// A host variant's instance may lack the message: it ends the process like any unknown one.
void activate(Id self, Selector selector, int state) {
    const standin::Instance& receiver = *standin::instanceOf(self);
    if (!receiver.respondsToSelector(selector)) standin::unrecognizedSelector(receiver, selector);
    as<SBRingerHUDController>(self).activate(state);
}

const Methods hostMethods = {
    {"+[FSSwitchPanel sharedPanel]",
     code([](Id, Selector) { return autoreleased(FSSwitchPanel::sharedPanel()); })},
    {"-[FSSwitchPanel stateDidChangeForSwitchIdentifier:]", code([](Id self, Selector, Id name) {
         as<FSSwitchPanel>(self).stateDidChangeForSwitchIdentifier(as<NSString>(name));
     })},
    {"+[AVSystemController sharedAVSystemController]", code([](Id, Selector) {
         return autoreleased(AVSystemController::sharedAVSystemController());
     })},
    {"-[AVSystemController getVolume:forCategory:]",
     code([](Id self, Selector, float* volume, Id category) {
         return int{as<AVSystemController>(self).getVolume(volume, as<NSString>(category))};
     })},
    {"-[AVSystemController setVolumeTo:forCategory:]",
     code([](Id self, Selector, float volume, Id category) {
         return int{as<AVSystemController>(self).setVolumeTo(volume, as<NSString>(category))};
     })},
    {"+[SBRingerHUDController sharedInstance]", code([](Id self, Selector) {
         return autoreleased(as<SBRingerHUDController>(self).sharedInstance());
     })},
    {"+[SBRingerHUDController activate:]",
     code([](Id self, Selector, int state) { as<SBRingerHUDController>(self).activate(state); })},
    {"-[SBRingerHUDController activate:]", code<activate>()},
    {"+[SBMediaController sharedInstance]", code([](Id self, Selector) {
         return autoreleased(as<SBMediaController>(self).sharedInstance());
     })},
    {"-[SBMediaController setRingerMuted:]", code([](Id self, Selector, BOOL muted) {
         as<SBMediaController>(self).setRingerMuted(muted);
     })},
};

int respondsToSelector(Id self, Selector, Selector asked) {
    return as<Object>(self).respondsToSelector(asked);
}

/// The base class of the stand-in, in the storage of an object of the module.
struct Base : NSObject {};

/// NSObject is above every class, PlatformObject above those of the objects that the stand-in has,
/// ModuleObject above those of the module.
const Methods commonMethods = {
    {"+[ModuleObject alloc]", code([](Id self, Selector) { return loadedClass(self)->alloc(); })},
    {"+[NSObject instanceMethodForSelector:]",
     code([](Id self, Selector, Selector asked) { return platformInstanceMethod(self, asked); })},
    {"-[NSObject init]", code([](Id self, Selector) { return static_cast<Id>(new (self) Base); })},
    {"-[NSObject dealloc]", code([](Id self, Selector) { classOfInstance(self)->dealloc(self); })},
    {"+[NSObject class]", code([](Id self, Selector) { return self; })},
    {"+[NSObject retain]", code([](Id self, Selector) { return retain(self); })},
    {"-[NSObject retain]", code([](Id self, Selector) { return retain(self); })},
    {"+[NSObject release]", code([](Id self, Selector) { release(self); })},
    {"-[NSObject release]", code([](Id self, Selector) { release(self); })},
    {"+[PlatformObject respondsToSelector:]", code<respondsToSelector>()},
    {"-[PlatformObject respondsToSelector:]", code<respondsToSelector>()},
    {"-[PlatformObject boolValue]",
     code([](Id self, Selector) { return int{as<Object>(self).boolValue()}; })},
    {"-[PlatformObject floatValue]",
     code([](Id self, Selector) { return as<Object>(self).floatValue(); })},
};

const Methods& methods() {
    static const Methods all = [] {
        Methods merged = foundationMethods;
        for (const Methods* more : {&dictionaryMethods, &hostMethods, &commonMethods}) {
            merged.insert(more->begin(), more->end());
        }
        return merged;
    }();
    return all;
}

}  // namespace

const void* platformMethod(char sign, const std::string& cls, std::string_view selector) {
    const auto found = methods().find(sign + ("[" + cls + " ").append(selector) + "]");
    return found == methods().end() ? nullptr : found->second;
}

bool hasPlatformClass(const std::string& cls) {
    const std::string prefix = "+[" + cls + " ";
    const auto found = methods().lower_bound(prefix);
    return found != methods().end() && found->first.starts_with(prefix);
}

}  // namespace quillet::macho
