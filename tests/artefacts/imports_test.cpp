// SPDX-License-Identifier: MIT
//
// Where the built modules look for each thing that they import. A device takes a symbol from the
// library that the module names and from no other: one wrong line here, and it does not load.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "tests/artefacts/built.h"

namespace quillet::test {
namespace {

using ::testing::IsEmpty;
using ::testing::UnorderedElementsAreArray;

/// "library symbol", "(weak)" behind what the module can do without.
const Words onEveryProcessor = {
    "AudioToolbox _AudioServicesPlaySystemSound",
    "Celestial _OBJC_CLASS_$_AVSystemController (weak)",
    "CoreFoundation _CFNotificationCenterAddObserver",
    "CoreFoundation _CFNotificationCenterGetDarwinNotifyCenter",
    "CoreFoundation _CFNotificationCenterPostNotification",
    "CoreFoundation _OBJC_CLASS_$_NSDate",
    "CoreFoundation _OBJC_CLASS_$_NSDictionary",
    "CoreFoundation _OBJC_CLASS_$_NSMutableDictionary",
    "Foundation _NSClassFromString",
    "Foundation _OBJC_CLASS_$_NSBundle",
    "Foundation _OBJC_CLASS_$_NSFileManager",
    "Foundation _OBJC_CLASS_$_NSNumber",
    "Foundation _OBJC_CLASS_$_NSRunLoop",
    "Foundation _OBJC_CLASS_$_NSString",
    "Foundation _OBJC_CLASS_$_NSThread",
    "GraphicsServices _GSSendAppPreferencesChanged",
    "libSystem ___stack_chk_fail",
    "libSystem ___stack_chk_guard",
    "libSystem _dlclose",
    "libSystem _dlopen",
    "libSystem _dlsym",
    "libSystem _notify_cancel",
    "libSystem _notify_check",
    "libSystem _notify_get_state",
    "libSystem _notify_post",
    "libSystem _notify_register_check",
    "libSystem _notify_set_state",
    "libSystem _strstr",
    "libSystem _uname",
    "libflipswitch _OBJC_CLASS_$_FSSwitchPanel",
    "libobjc _OBJC_CLASS_$_NSObject",
    "libobjc _OBJC_METACLASS_$_NSObject",
    "libobjc __objc_empty_cache",
    "libobjc _class_isMetaClass",
    "libobjc _class_respondsToSelector",
    "libobjc _objc_msgSend",
    "libobjc _objc_msgSendSuper2",
    "libobjc _object_getClass",
    "libobjc _sel_registerName",
};

struct Processor {
    std::string name;
    /// What the compiler and the linker ask for beside.
    Words more;
};

void PrintTo(const Processor& processor, std::ostream* out) { *out << processor.name; }

const std::vector<Processor> processors = {
    {"armv7", {"libSystem _memset"}},
    {"arm64", {"libSystem _bzero", "libSystem dyld_stub_binder"}},
    {"x86_64", {"libSystem _memset", "libSystem dyld_stub_binder"}},
};

/// "__DATA __got 0x8000 pointer 0 libSystem _uname", in the lazy table without "pointer 0".
std::string importIn(const std::string& line) {
    std::istringstream stream(line);
    Words words;
    for (std::string word; stream >> word;) words.push_back(word);
    const bool isWeak = words.back() == "(weak_import)";
    if (isWeak) words.pop_back();
    return words.end()[-2] + " " + words.back() + (isWeak ? " (weak)" : "");
}

/// Each once, however often the module needs it.
Words importsIn(const std::string& tables) {
    Words imports;
    for (const std::string& line : linesWith(tables, " 0x")) imports.push_back(importIn(line));
    std::sort(imports.begin(), imports.end());
    imports.erase(std::unique(imports.begin(), imports.end()), imports.end());
    return imports;
}

class Imports : public testing::TestWithParam<Processor> {
protected:
    static std::string tables(const std::string& options) {
        return textOf("llvm-objdump-14 --macho " + options + " " + builtModule(GetParam().name));
    }
};

INSTANTIATE_TEST_SUITE_P(Built, Imports, testing::ValuesIn(processors),
                         [](const auto& instance) { return instance.param.name; });

TEST_P(Imports, AreLookedForWhereADeviceHasThem) {
    Words expected = onEveryProcessor;
    const Words& more = GetParam().more;
    expected.insert(expected.end(), more.begin(), more.end());
    EXPECT_THAT(importsIn(tables("--bind --lazy-bind")), UnorderedElementsAreArray(expected));
}

TEST_P(Imports, AreNeverTakenFromWhicheverLibraryComesFirst) {
    EXPECT_THAT(importsIn(tables("--weak-bind")), IsEmpty());
}

// The symbol table tells of the same libraries: tools read it, and some loaders do.
TEST_P(Imports, StandInTheSymbolTableWithTheSameLibraries) {
    Words expected;
    for (const std::string& line : importsIn(tables("--bind --lazy-bind"))) {
        std::istringstream stream(line);
        std::string library, symbol;
        stream >> library >> symbol;
        expected.push_back(symbol + " " + library);
    }
    Words found;
    const std::string names = textOf("llvm-nm-14 -m -u " + builtModule(GetParam().name));
    for (std::string line : linesWith(names, "(from ")) {
        const auto library = line.find(" (from ");
        const auto symbol = line.rfind(' ', library - 1) + 1;
        found.push_back(line.substr(symbol, library - symbol) + " " +
                        line.substr(library + 7, line.find(')', library) - library - 7));
    }
    EXPECT_THAT(found, UnorderedElementsAreArray(expected));
}

}  // namespace
}  // namespace quillet::test
