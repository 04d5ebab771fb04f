// SPDX-License-Identifier: MIT
#include "tests/platforms/macho/loader/classes.h"

#include <algorithm>
#include <span>

#include "platform/standin/runtime/module.h"

namespace quillet::macho {

namespace {

constexpr std::uint32_t largestInstance = 0x10000;

// The metadata's records, as they lie in the module's memory.

struct ClassObject {
    /// In the lowest bits of `data`: marks of another language's classes.
    static constexpr std::uintptr_t dataMarks = alignof(void*) - 1;

    const void* metaclass;
    const void* superclass;
    const void* cache;
    const void* reserved;
    std::uintptr_t data;
};

struct ClassData {
    /// Flags: of a metaclass, of a class without a superclass.
    static constexpr std::uint32_t metaclass = 1;
    static constexpr std::uint32_t root = 2;

    std::uint32_t flags, instanceStart, instanceSize;
    const void* instanceLayout;
    const void* name;
    const void* methods;
    const void* protocols;
    const void* fields;
    const void* weakLayout;
    const void* properties;
};

struct Protocol {
    const void* isa;
    const void* name;
};

/// Of methods, fields or properties.
struct List {
    /// The record's size; bits beside it mark other forms of the list.
    std::uint32_t entrySize;
    std::uint32_t count;
};

struct MethodRecord {
    const void* selector;
    const void* types;
    const void* code;
};

struct FieldRecord {
    const void* offset;
    const void* name;
    const void* type;
    std::uint32_t alignment;
    std::uint32_t size;
};

struct PropertyRecord {
    const void* name;
    const void* attributes;
};

/// "v28@0:8i16@20" with the places, which differ between processors, left out.
std::string withoutPlaces(std::string types) {
    std::erase_if(types, [](char c) { return c >= '0' && c <= '9'; });
    return types;
}

/// What the list at `place` holds; nothing when `place` is null.
template <class Record>
std::span<const Record> readList(const Image& image, const void* place) {
    if (place == nullptr) return {};
    const auto list = image.value<List>(place);
    if (list.entrySize != sizeof(Record)) {
        throw standin::BundleError("not supported: a class's lists of another form");
    }
    return image.values<Record>(static_cast<const std::byte*>(place) + sizeof list, list.count);
}

std::vector<Method> readMethods(const Image& image, const void* place) {
    std::vector<Method> methods;
    for (const MethodRecord& record : readList<MethodRecord>(image, place)) {
        image.value<std::uint8_t>(record.code);  // in the module
        methods.push_back(
            {image.text(record.selector), withoutPlaces(image.text(record.types)), record.code});
    }
    return methods;
}

std::vector<Field> readFields(const Image& image, const void* place) {
    std::vector<Field> fields;
    for (const FieldRecord& record : readList<FieldRecord>(image, place)) {
        fields.push_back({image.text(record.name), image.text(record.type),
                          image.value<std::uint32_t>(record.offset), record.size});
    }
    return fields;
}

std::vector<Property> readProperties(const Image& image, const void* place) {
    std::vector<Property> properties;
    for (const PropertyRecord& record : readList<PropertyRecord>(image, place)) {
        properties.push_back({image.text(record.name), image.text(record.attributes)});
    }
    return properties;
}

std::vector<std::string> readProtocols(const Image& image, const void* list) {
    std::vector<std::string> names;
    if (list == nullptr) return names;
    const auto count = image.value<std::uintptr_t>(list);
    const void* const first = static_cast<const std::byte*>(list) + sizeof count;
    for (const void* const protocol : image.values<const void*>(first, count)) {
        names.emplace_back(image.text(image.value<Protocol>(protocol).name));
    }
    return names;
}

const ClassData& dataOf(const Image& image, const ClassObject& object) {
    if ((object.data & ClassObject::dataMarks) != 0) {
        throw standin::BundleError("not supported: classes of another language");
    }
    return image.value<ClassData>(reinterpret_cast<const void*>(object.data));
}

std::uint32_t kindIn(const ClassData& data) {
    return data.flags & (ClassData::metaclass | ClassData::root);
}

ModuleClass readClass(const Image& image, const void* place) {
    const auto& object = image.value<ClassObject>(place);
    const ClassData& data = dataOf(image, object);
    if (data.instanceSize < sizeof(void*) || data.instanceSize > largestInstance) {
        malformed("a class with instances of " + std::to_string(data.instanceSize) + " bytes");
    }
    const ClassData& metaclassData = dataOf(image, image.value<ClassObject>(object.metaclass));
    if (kindIn(data) != 0 || kindIn(metaclassData) != ClassData::metaclass) {
        malformed("a class that is marked as one of another kind");
    }
    return {.name = image.text(data.name),
            .address = place,
            .superclass = object.superclass,
            .instanceStart = data.instanceStart,
            .instanceSize = data.instanceSize,
            .hasLoad = false,
            .protocols = readProtocols(image, data.protocols),
            .classMethods = readMethods(image, metaclassData.methods),
            .instanceMethods = readMethods(image, data.methods),
            .fields = readFields(image, data.fields),
            .properties = readProperties(image, data.properties)};
}

}  // namespace

const Method* find(const std::vector<Method>& methods, std::string_view selector) {
    const auto found = std::ranges::find(methods, selector, &Method::selector);
    return found == methods.end() ? nullptr : &*found;
}

std::vector<ModuleClass> readClasses(const Image& image) {
    if (!image.addresses("__objc_catlist").empty()) {
        throw standin::BundleError("not supported: categories");
    }
    const auto withLoad = image.addresses("__objc_nlclslist");
    std::vector<ModuleClass> classes;
    for (const void* const place : image.addresses("__objc_classlist")) {
        ModuleClass& cls = classes.emplace_back(readClass(image, place));
        cls.hasLoad = std::ranges::find(withLoad, place) != withLoad.end();
    }
    return classes;
}

}  // namespace quillet::macho
