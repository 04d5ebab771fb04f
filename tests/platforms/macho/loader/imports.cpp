// SPDX-License-Identifier: MIT
#include "tests/platforms/macho/loader/imports.h"

#include <strings.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <set>
#include <string_view>

#include "platform/audio_toolbox.h"
#include "platform/graphics_services.h"
#include "platform/notification_center.h"
#include "platform/notify.h"
#include "platform/springboard_classes.h"
#include "platform/standin/runtime/instances.h"
#include "platform/system.h"
#include "tests/platforms/macho/loader/convention.h"
#include "tests/platforms/macho/loader/runtime.h"

extern "C" {

// The device's functions in the stand-in, see platform/standin/system.cpp.
int __wrap_uname(quillet::utsname* name);
char* __wrap_strstr(const char* text, const char* part);
void* __wrap_dlopen(const char* path, int mode);
void* __wrap_dlsym(void* handle, const char* symbol);
int __wrap_dlclose(void* handle);

// The C library's.
[[noreturn]] void __stack_chk_fail();

}  // extern "C"

namespace quillet::macho {

namespace {

/// What a function's frame is guarded with.
const std::uintptr_t stackGuard = static_cast<std::uintptr_t>(0x5AFE5AFE5AFE0000);

const char emptyMethodCache = 0;

[[noreturn]] void abortAtLazyBinding() {
    std::fputs("every import is bound when the module is loaded\n", stderr);
    std::abort();
}

Id classFromString(Id name) {
    const std::string_view text = standin::text(name);
    if (text == "SBMediaController") return autoreleased(SBMediaController::classInHost());
    if (text == "SBRingerHUDController") return autoreleased(SBRingerHUDController::classInHost());
    std::fprintf(stderr, "unknown class: %.*s\n", static_cast<int>(text.size()), text.data());
    std::abort();
}

Selector registerSelector(const char* name) {
    static std::set<std::string, std::less<>> names;
    return names.emplace(name).first->c_str();
}

/// An instance of the stand-in knows itself what it responds to, so its class is its own word with
/// a mark. Nothing but the two functions below takes it.
constexpr std::uintptr_t classMark = 1;

Id classOf(Id object) {
    return object == nullptr ? nullptr : static_cast<std::byte*>(object) + classMark;
}

/// The instance that `cls` is the class of. Null for null; ends the process for what is no class.
const standin::Instance* instanceOfClass(Id cls, const char* function) {
    if (cls == nullptr) return nullptr;
    if ((reinterpret_cast<std::uintptr_t>(cls) & classMark) == 0) {
        std::fprintf(stderr, "%s: not the class of an object\n", function);
        std::abort();
    }
    return standin::instanceOf(static_cast<std::byte*>(cls) - classMark);
}

int isMetaclass(Id cls) {
    const standin::Instance* const instance = instanceOfClass(cls, "class_isMetaClass");
    return instance != nullptr && instance->isClass() ? 1 : 0;
}

int classRespondsToSelector(Id cls, Selector selector) {
    const standin::Instance* const instance = instanceOfClass(cls, "class_respondsToSelector");
    return instance != nullptr && instance->respondsToSelector(selector) ? 1 : 0;
}

/// The one function that a module looks up.
void* findInLibrary(void* handle, const char* symbol) {
    const void* const found = __wrap_dlsym(handle, symbol);
    if (found == nullptr) return nullptr;
    return const_cast<void*>(code<GSSendAppPreferencesChanged>());
}

/// The module's callback is its own code.
void addObserver(CFNotificationCenterRef center, const void* observer,
                 CFNotificationCallback callback, CFStringRef name, const void* object,
                 CFNotificationSuspensionBehavior behavior) {
    CFNotificationCenterAddObserver(center, observer, callable(callback), name, object, behavior);
}

/// What a library of the device has.
struct Content {
    std::map<std::string_view, const void*> symbols;
    std::set<std::string_view> classes;
};

const Content objcRuntime = {
    .symbols = {{"_objc_empty_cache", &emptyMethodCache},
                {"class_isMetaClass", code<isMetaclass>()},
                {"class_respondsToSelector", code<classRespondsToSelector>()},
                {"objc_msgSend", reinterpret_cast<const void*>(quilletSendMessage)},
                {"objc_msgSendSuper2", code<sendToSuper>()},
                {"object_getClass", code<classOf>()},
                {"sel_registerName", code<registerSelector>()}},
    .classes = {"NSObject"},
};

const Content systemLibrary = {
    .symbols = {{"__stack_chk_fail", code<__stack_chk_fail>()},
                {"__stack_chk_guard", &stackGuard},
                {"bzero", code<bzero>()},
                {"dlclose", code<__wrap_dlclose>()},
                {"dlopen", code<__wrap_dlopen>()},
                {"dlsym", code<findInLibrary>()},
                {"dyld_stub_binder", code<abortAtLazyBinding>()},
                {"memset", code<::memset>()},
                {"notify_cancel", code<notify_cancel>()},
                {"notify_check", code<notify_check>()},
                {"notify_get_state", code<notify_get_state>()},
                {"notify_post", code<notify_post>()},
                {"notify_register_check", code<notify_register_check>()},
                {"notify_set_state", code<notify_set_state>()},
                {"strstr", code<__wrap_strstr>()},
                {"uname", code<__wrap_uname>()}},
    .classes = {},
};

const Content coreFoundation = {
    .symbols = {{"CFNotificationCenterAddObserver", code<addObserver>()},
                {"CFNotificationCenterGetDarwinNotifyCenter",
                 code<CFNotificationCenterGetDarwinNotifyCenter>()},
                {"CFNotificationCenterPostNotification",
                 code<CFNotificationCenterPostNotification>()}},
    .classes = {"NSDate", "NSDictionary", "NSMutableDictionary"},
};

const Content foundation = {
    .symbols = {{"NSClassFromString", code<classFromString>()}},
    .classes = {"NSBundle", "NSFileManager", "NSNumber", "NSRunLoop", "NSString", "NSThread"},
};

const std::map<std::string_view, Content>& libraries() {
    static const std::map<std::string_view, Content> byPath = {
        {"/System/Library/Frameworks/AudioToolbox.framework/AudioToolbox",
         {.symbols = {{"AudioServicesPlaySystemSound", code<AudioServicesPlaySystemSound>()}},
          .classes = {}}},
        {"/System/Library/Frameworks/CoreFoundation.framework/CoreFoundation", coreFoundation},
        {"/System/Library/Frameworks/Foundation.framework/Foundation", foundation},
        {"/System/Library/PrivateFrameworks/Celestial.framework/Celestial",
         {.symbols = {}, .classes = {"AVSystemController"}}},
        {"/System/Library/PrivateFrameworks/GraphicsServices.framework/GraphicsServices",
         {.symbols = {{"GSSendAppPreferencesChanged", code<GSSendAppPreferencesChanged>()}},
          .classes = {}}},
        {"/usr/lib/libSystem.B.dylib", systemLibrary},
        {"/usr/lib/libflipswitch.dylib", {.symbols = {}, .classes = {"FSSwitchPanel"}}},
        {"/usr/lib/libobjc.A.dylib", objcRuntime},
    };
    return byPath;
}

const void* findClass(const Content& content, std::string_view name) {
    return content.classes.contains(name) ? platformClass(std::string{name}) : nullptr;
}

}  // namespace

bool hasLibrary(const std::string& library) { return libraries().contains(library); }

const void* findImport(const std::string& library, const std::string& symbol) {
    const auto content = libraries().find(library);
    if (content == libraries().end()) return nullptr;
    static constexpr std::string_view classPrefix = "_OBJC_CLASS_$_";
    static constexpr std::string_view metaclassPrefix = "_OBJC_METACLASS_$_";
    std::string_view name{symbol};
    if (name.starts_with(classPrefix)) {
        return findClass(content->second, name.substr(classPrefix.size()));
    }
    if (name.starts_with(metaclassPrefix)) {
        const bool isKnown =
            findClass(content->second, name.substr(metaclassPrefix.size())) != nullptr;
        return isKnown ? platformMetaclass() : nullptr;
    }
    // The one name that the linker itself asks for has no underscore.
    if (name.starts_with('_')) name.remove_prefix(1);
    const auto found = content->second.symbols.find(name);
    return found == content->second.symbols.end() ? nullptr : found->second;
}

}  // namespace quillet::macho
