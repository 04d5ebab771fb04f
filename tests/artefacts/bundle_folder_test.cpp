// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <sstream>
#include <string>

#include "platform/standin/plist/property_list.h"
#include "tests/support/program.h"

namespace quillet::test {
namespace {

namespace fs = std::filesystem;
using standin::Dictionary;
using standin::Value;
using ::testing::HasSubstr;
using ::testing::IsSupersetOf;
using ::testing::Not;
using ::testing::UnorderedElementsAre;

const fs::path bundle = QUILLET_BUNDLE;
const fs::path module = bundle / "Quillet";

/// What a command of the system prints about the module.
std::string printed(const std::string& command) {
    const Outcome outcome = runInShell(command + " '" + module.string() + "'");
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    return outcome.output;
}

/// Names that sanitizers and coverage put into every module that is built with them.
bool isInstrumentation(const std::string& symbol) {
    for (const char* const prefix :
         {"__asan_", "__odr_asan", "___asan_", "__tsan_", "__ubsan_", "__gcov_", "mangle_path",
          "__llvm_", "__sanitizer_", "__start___sancov", "__stop___sancov"}) {
        if (symbol.starts_with(prefix)) return true;
    }
    return false;
}

/// Whether the module calls a sanitizer, which brings types and libraries of its own.
bool isSanitized() {
    const std::string undefined = printed("nm -D --undefined-only");
    return std::ranges::any_of(std::array{"__asan_", "__tsan_", "__ubsan_"}, [&](const char* name) {
        return undefined.find(name) != std::string::npos;
    });
}

/// The words in that column of what nm prints, but for instrumentation.
Words symbolsIn(const std::string& table, int column) {
    Words symbols;
    for (const std::string& line : linesOf(table)) {
        std::istringstream words{line};
        std::string word;
        for (int i = 0; i <= column; ++i) words >> word;
        if (!isInstrumentation(word)) symbols.push_back(word);
    }
    return symbols;
}

Dictionary dictionaryIn(const fs::path& file) {
    return std::get<Dictionary>(standin::readPropertyList(readText(file)).value());
}

std::string stringIn(const Dictionary& dictionary, const char* key) {
    const auto value = dictionary.find(key);
    const auto* const string = value ? std::get_if<std::string>(&*value) : nullptr;
    return string != nullptr ? *string : "(none)";
}

TEST(LinuxModule, ExportsItsTenNamesAndNothingElse) {
    Words symbols = symbolsIn(printed("nm -D --defined-only"), 2);
    if (isSanitized()) {
        // What one of them knows the functions by.
        std::erase_if(symbols, [](const std::string& name) { return name.starts_with("_ZT"); });
    }
    EXPECT_THAT(symbols, UnorderedElementsAre("turnSpringBoardVibrationOff",
                                              "restoreSpringBoardVibration", "updatePref",
                                              "notifyDarwinCenter", "isiPod", "turnRingerVolumeOff",
                                              "restoreRingerVolume", "GLOBAL_vibrateWhenRinging",
                                              "GLOBAL_vibrateWhenSilent", "_prefsLoader"));
}

TEST(LinuxModule, NeedsNoRuntimeLibraryOfTheLanguage) {
    if (isSanitized()) GTEST_SKIP() << "a sanitizer needs it";
    const std::string needed = printed("readelf -dW");
    EXPECT_THAT(needed, HasSubstr("(NEEDED)"));
    for (const char* const library : {"libstdc++", "libc++", "libsupc++"}) {
        EXPECT_THAT(needed, Not(HasSubstr(library)));
    }
}

TEST(LinuxModule, FindsItsPlatformBesideTheBundle) {
    const std::string table = printed("readelf -dW");
    EXPECT_THAT(table, HasSubstr("[libquillet-platform.so]"));
    EXPECT_THAT(table, HasSubstr("$ORIGIN/.."));
}

TEST(LinuxModule, TakesTheSystemsFunctionsFromTheDevice) {
    const Words undefined = symbolsIn(printed("nm -D --undefined-only"), 1);
    EXPECT_THAT(undefined, IsSupersetOf({"__wrap_uname", "__wrap_strstr", "__wrap_dlopen",
                                         "__wrap_dlsym", "__wrap_dlclose"}));
    for (const std::string& symbol : undefined) {
        const std::string name = symbol.substr(0, symbol.find('@'));
        for (const char* const linux : {"uname", "strstr", "dlopen", "dlsym", "dlclose"}) {
            EXPECT_NE(name, linux);
        }
    }
}

TEST(BundleFolder, ItsPropertyListNamesTheSwitchItsClassAndItsModule) {
    const Dictionary info = dictionaryIn(bundle / "Info.plist");
    EXPECT_EQ(stringIn(info, "CFBundleIdentifier"), "com.velk.switch.ringer");
    EXPECT_EQ(stringIn(info, "NSPrincipalClass"), "RingerSwitch");
    EXPECT_EQ(stringIn(info, "CFBundleExecutable"), "Quillet");
    EXPECT_EQ(stringIn(info, "CFBundleDisplayName"), "Ringer");
    EXPECT_EQ(stringIn(info, "CFBundleDevelopmentRegion"), "en");
    EXPECT_EQ(stringIn(info, "CFBundlePackageType"), "BNDL");
    EXPECT_EQ(stringIn(info, "CFBundleShortVersionString"), QUILLET_VERSION);
    EXPECT_EQ(stringIn(info, "CFBundleVersion"), QUILLET_VERSION);
    EXPECT_TRUE(fs::is_regular_file(bundle / stringIn(info, "CFBundleExecutable")));
}

TEST(BundleFolder, HasItsTitleInEnglish) {
    const Dictionary strings = dictionaryIn(bundle / "en.lproj/InfoPlist.strings");
    EXPECT_EQ(stringIn(strings, "CFBundleDisplayName"), "Ringer");
}

TEST(BundleFolder, HasADrawingForOnAndAnotherForOff) {
    for (const char* const file : {"glyph-on.pdf", "glyph-off.pdf"}) {
        const std::string drawing = readText(bundle / file);
        EXPECT_TRUE(drawing.starts_with("%PDF-")) << file;
        EXPECT_THAT(drawing.substr(drawing.size() - std::min<std::size_t>(drawing.size(), 8)),
                    HasSubstr("%%EOF"))
            << file;
    }
    EXPECT_NE(readText(bundle / "glyph-on.pdf"), readText(bundle / "glyph-off.pdf"));
}

TEST(BundleFolder, HoldsNothingElse) {
    Words files;
    for (const auto& entry : fs::recursive_directory_iterator{bundle}) {
        files.push_back(fs::relative(entry.path(), bundle));
    }
    EXPECT_THAT(
        files, UnorderedElementsAre("Info.plist", "Quillet", "en.lproj",
                                    "en.lproj/InfoPlist.strings", "glyph-on.pdf", "glyph-off.pdf"));
}

}  // namespace
}  // namespace quillet::test
