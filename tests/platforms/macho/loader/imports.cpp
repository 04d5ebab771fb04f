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
const std::uintptr_t stackGuard = 0x5AFE5AFE5AFE0000;

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

/// An instance of the stand-in knows itself what it responds to, so it stands for its class.
Id classOf(Id object) { return object; }
int isMetaclass(Id cls) { return cls != nullptr && standin::instanceOf(cls)->isClass() ? 1 : 0; }
int respondsToSelector(Id object, Selector selector) {
    return object != nullptr && standin::instanceOf(object)->respondsToSelector(selector) ? 1 : 0;
}

template <class Function>
const void* code(Function* function) {
    return reinterpret_cast<const void*>(function);
}

const std::map<std::string_view, const void*>& names() {
    static const std::map<std::string_view, const void*> names = {
        {"AudioServicesPlaySystemSound", code(AudioServicesPlaySystemSound)},
        {"CFNotificationCenterAddObserver", code(CFNotificationCenterAddObserver)},
        {"CFNotificationCenterGetDarwinNotifyCenter",
         code(CFNotificationCenterGetDarwinNotifyCenter)},
        {"CFNotificationCenterPostNotification", code(CFNotificationCenterPostNotification)},
        {"GSSendAppPreferencesChanged", code(GSSendAppPreferencesChanged)},
        {"NSClassFromString", code(classFromString)},
        {"__stack_chk_fail", code(__stack_chk_fail)},
        {"__stack_chk_guard", &stackGuard},
        {"_objc_empty_cache", &emptyMethodCache},
        {"bzero", code(bzero)},
        {"class_isMetaClass", code(isMetaclass)},
        {"class_respondsToSelector", code(respondsToSelector)},
        {"dlclose", code(__wrap_dlclose)},
        {"dlopen", code(__wrap_dlopen)},
        {"dlsym", code(__wrap_dlsym)},
        {"dyld_stub_binder", code(abortAtLazyBinding)},
        {"memset", code(::memset)},
        {"notify_cancel", code(notify_cancel)},
        {"notify_check", code(notify_check)},
        {"notify_get_state", code(notify_get_state)},
        {"notify_post", code(notify_post)},
        {"notify_register_check", code(notify_register_check)},
        {"notify_set_state", code(notify_set_state)},
        {"objc_msgSend", code(quilletSendMessage)},
        {"objc_msgSendSuper2", code(sendToSuper)},
        {"object_getClass", code(classOf)},
        {"sel_registerName", code(registerSelector)},
        {"strstr", code(__wrap_strstr)},
        {"uname", code(__wrap_uname)},
    };
    return names;
}

}  // namespace

const void* findImport(const std::string& symbol) {
    static const std::string classPrefix = "_OBJC_CLASS_$_";
    static const std::string metaclassPrefix = "_OBJC_METACLASS_$_";
    if (symbol.starts_with(classPrefix)) return platformClass(symbol.substr(classPrefix.size()));
    if (symbol.starts_with(metaclassPrefix)) {
        const bool isKnown = platformClass(symbol.substr(metaclassPrefix.size())) != nullptr;
        return isKnown ? platformMetaclass() : nullptr;
    }
    // The one name that the linker itself asks for has no underscore.
    const std::string_view name{symbol};
    const auto found = names().find(name.starts_with('_') ? name.substr(1) : name);
    return found == names().end() ? nullptr : found->second;
}

}  // namespace quillet::macho
