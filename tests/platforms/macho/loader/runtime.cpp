// SPDX-License-Identifier: MIT
#include "tests/platforms/macho/loader/runtime.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>
#include <utility>

#include "platform/standin/runtime/instances.h"
#include "platform/standin/runtime/module.h"
#include "tests/platforms/macho/loader/platform_methods.h"
#include "tests/platforms/macho/loader/sent_messages.h"

namespace quillet::macho {

namespace {

/// Of all kinds of objects but the platform's own, the first word says what they are.
const void* kindOf(const void* object) { return *static_cast<const void* const*>(object); }

constexpr char metaclass = 0;
constexpr char allocated = 0;

struct PlatformClass {
    struct Allocation {
        const void* kind = &allocated;
        const PlatformClass* cls;
    };

    explicit PlatformClass(std::string className) : name{std::move(className)} {}
    PlatformClass(const PlatformClass&) = delete;
    PlatformClass& operator=(const PlatformClass&) = delete;

    const void* kind = &metaclass;
    const std::string name;
    Allocation allocation{.cls = this};
};

std::vector<LoadedClass*>& loadedClasses() {
    static std::vector<LoadedClass*> classes;
    return classes;
}

/// What the pools hold, the outermost first.
std::vector<Object>& pooled() {
    static std::vector<Object> objects;
    return objects;
}

/// Whether the stand-in keeps the object and counts it.
bool isInstance(const void* object) {
    const void* const kind = kindOf(object);
    return kind != &metaclass && kind != &allocated && loadedClass(object) == nullptr &&
           classOfInstance(object) == nullptr;
}

/// How an object's methods are named in the table of platform_methods.h.
struct Receiver {
    /// '+' for a class, '-' for anything else.
    char sign;
    /// The class and those above it.
    std::vector<std::string> classes;
};

Receiver describeInstance(const standin::Instance& instance) {
    Receiver receiver = {instance.isClass() ? '+' : '-', {instance.className()}};
    if (instance.className() == "NSMutableDictionary")
        receiver.classes.emplace_back("NSDictionary");
    receiver.classes.emplace_back("PlatformObject");
    receiver.classes.emplace_back("NSObject");
    return receiver;
}

Receiver describe(const void* object) {
    const void* const kind = kindOf(object);
    if (kind == &metaclass) {
        return {'+', {static_cast<const PlatformClass*>(object)->name, "NSObject"}};
    }
    if (kind == &allocated) {
        const auto& allocation = *static_cast<const PlatformClass::Allocation*>(object);
        return {'-', {"allocated " + allocation.cls->name}};
    }
    if (const LoadedClass* const cls = loadedClass(object))
        return {'+', {cls->cls.name, "ModuleObject", "NSObject"}};
    if (const LoadedClass* const cls = classOfInstance(object))
        return {'-', {cls->cls.name, "ModuleObject", "NSObject"}};
    return describeInstance(*standin::instanceOf(object));
}

[[noreturn]] void unknownMessage(char sign, const std::string& cls, Selector selector) {
    std::fprintf(stderr, "unknown message: %c[%s %s]\n", sign, cls.c_str(), selector);
    std::abort();
}

const void* moduleMethod(const void* object, Selector selector) {
    const LoadedClass* const ofClass = loadedClass(object);
    const LoadedClass* const ofInstance = classOfInstance(object);
    const Method* method = nullptr;
    if (ofClass != nullptr) method = find(ofClass->cls.classMethods, selector);
    if (ofInstance != nullptr) method = find(ofInstance->cls.instanceMethods, selector);
    return method == nullptr ? nullptr : method->code;
}

}  // namespace

/// For quilletSendMessage: what `selector` sent to `object` calls. Null for nil.
extern "C" const void* quilletFindMethod(const void* object, Selector selector) {
    const void* const own = object == nullptr ? nullptr : moduleMethod(object, selector);
    if (own != nullptr) return own;
    countMessage(object, selector);
    if (object == nullptr) return nullptr;
    const Receiver receiver = describe(object);
    for (const std::string& cls : receiver.classes) {
        if (const void* const code = platformMethod(receiver.sign, cls, selector)) return code;
    }
    unknownMessage(receiver.sign, receiver.classes.front(), selector);
}

Id sendToSuper(const Super* super, Selector selector) {
    // The class above is the platform's: nothing else is loaded.
    using Message = Id (*)(Id, Selector);
    const Id superclass = const_cast<Id>(loadedClass(super->cls)->cls.superclass);
    const auto message =
        reinterpret_cast<Message>(const_cast<void*>(platformInstanceMethod(superclass, selector)));
    return message(super->receiver, selector);
}

const void* platformInstanceMethod(Id platformClass, Selector selector) {
    const std::string& name = static_cast<const PlatformClass*>(platformClass)->name;
    const void* const code = platformMethod('-', name, selector);
    if (code == nullptr) unknownMessage('-', name, selector);
    return code;
}

LoadedClass::LoadedClass(ModuleClass moduleClass) : cls{std::move(moduleClass)} {
    if (cls.superclass != platformClass("NSObject")) {
        throw standin::BundleError("not supported: class " + cls.name + " not based on NSObject");
    }
    loadedClasses().push_back(this);
}

LoadedClass::~LoadedClass() { std::erase(loadedClasses(), this); }

Id LoadedClass::alloc() {
    auto storage = std::make_unique<std::byte[]>(cls.instanceSize);
    std::memcpy(storage.get(), &cls.address, sizeof cls.address);
    const Id instance = storage.get();
    instances_[instance] = {.storage = std::move(storage)};
    return instance;
}

void LoadedClass::release(Id instance) {
    if (--instances_.at(instance).count == 0) sendMessage<void>(instance, "dealloc");
}

LoadedClass* loadedClass(const void* address) {
    const auto found = std::ranges::find(loadedClasses(), address,
                                         [](const LoadedClass* cls) { return cls->cls.address; });
    return found == loadedClasses().end() ? nullptr : *found;
}

LoadedClass* classOfInstance(const void* object) { return loadedClass(kindOf(object)); }

Id platformClass(const std::string& name) {
    static std::map<std::string, PlatformClass> classes;
    if (!hasPlatformClass(name)) return nullptr;
    return &classes.try_emplace(name, name).first->second;
}

const void* platformMetaclass() { return &metaclass; }

Id allocationOf(Id platformClass) {
    return &static_cast<PlatformClass*>(platformClass)->allocation;
}

Pool::Pool() : begin_{pooled().size()} {}

Pool::~Pool() {
    // Fewer than at the beginning when objects of an outer pool have been retained meanwhile.
    if (pooled().size() > begin_) pooled().resize(begin_);
}

Id autoreleased(const Object& reference) {
    if (reference) pooled().push_back(reference);
    return reference.instance();
}

Id owned(const Object& reference) {
    standin::send(reference, [](standin::Instance& instance) { instance.retain(); });
    return reference.instance();
}

Id retain(Id object) {
    if (LoadedClass* const cls = classOfInstance(object)) cls->retain(object);
    if (!isInstance(object)) return object;
    standin::instanceOf(object)->retain();
    const auto held = std::ranges::find(pooled(), object, &Object::instance);
    if (held != pooled().end()) pooled().erase(held);
    return object;
}

void release(Id object) {
    if (LoadedClass* const cls = classOfInstance(object)) return cls->release(object);
    if (isInstance(object)) standin::instanceOf(object)->release();
}

}  // namespace quillet::macho
