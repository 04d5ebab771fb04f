// SPDX-License-Identifier: MIT
//
// What the built modules say of themselves, as the tools that read Mach-O files tell it.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <regex>

#include "tests/artefacts/built.h"
#include "tests/support/temporary_folder.h"

namespace quillet::test {
namespace {

using ::testing::Contains;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::UnorderedElementsAre;
using ::testing::UnorderedElementsAreArray;

const Words face = {
    "_GLOBAL_vibrateWhenRinging",
    "_GLOBAL_vibrateWhenSilent",
    "_OBJC_CLASS_$_RingerSwitch",
    "_OBJC_METACLASS_$_RingerSwitch",
    "__prefsLoader",
    "_isiPod",
    "_notifyDarwinCenter",
    "_restoreRingerVolume",
    "_restoreSpringBoardVibration",
    "_turnRingerVolumeOff",
    "_turnSpringBoardVibrationOff",
    "_updatePref",
};

/// The last word of each line.
Words lastWords(Words lines) {
    for (std::string& line : lines) line.erase(0, line.find_last_of(' ') + 1);
    return lines;
}

/// Each test sees the modules of all architectures.
class Module : public testing::TestWithParam<std::string> {
protected:
    static std::string objdump(const std::string& options) {
        return textOf("llvm-objdump-14 --macho " + options + " " + builtModule(GetParam()));
    }

    /// What the module says of one of its classes.
    static std::string metadataOf(const std::string& cls) {
        const std::string all = objdump("--objc-meta-data");
        // Each class begins with its place and its address, with no white space before them.
        const std::regex begin{"\\n[0-9a-f]{16} 0x"};
        std::string found;
        for (std::sregex_token_iterator part{all.begin(), all.end(), begin, -1}, end; part != end;
             ++part) {
            const std::string text = *part;
            if (text.find(" " + cls + "\n") != std::string::npos) found += text;
        }
        return found;
    }

    static std::string names(const std::string& options) {
        return textOf("llvm-nm-14 --format=just-symbols " + options + " " +
                      builtModule(GetParam()));
    }
};

INSTANTIATE_TEST_SUITE_P(Built, Module, testing::Values("armv7", "arm64", "x86_64"),
                         [](const auto& instance) { return instance.param; });

/// What is told otherwise of 32-bit modules: see armv7_test.cpp.
class Module64 : public Module {};

INSTANTIATE_TEST_SUITE_P(Built, Module64, testing::Values("arm64", "x86_64"),
                         [](const auto& instance) { return instance.param; });

TEST_P(Module, IsABundleOfItsArchitectureWhoseImportsNameTheirLibraries) {
    const std::string header = objdump("--private-header");
    EXPECT_THAT(column(header, 4), Contains("BUNDLE"));
    const std::map<std::string, std::string> processors = {
        {"armv7", "ARM"}, {"arm64", "ARM64"}, {"x86_64", "X86_64"}};
    EXPECT_THAT(column(header, 1), Contains(processors.at(GetParam())));
    EXPECT_THAT(header, HasSubstr("TWOLEVEL"));
}

TEST_P(Module, RunsOnSystemsFrom7_0) {
    const std::string commands = objdump("--private-headers");
    EXPECT_THAT(commands, HasSubstr("cmd LC_VERSION_MIN_IPHONEOS\n  cmdsize 16\n  version 7.0\n"));
    EXPECT_THAT(commands, Not(HasSubstr("LC_BUILD_VERSION")));
}

// A library that is older than a module asks for is refused. The switch framework's has no version.
TEST_P(Module, LoadsExactlyTheLibrariesOfThePlatformInTheirFirstVersionsAndCelestialIfItIsThere) {
    EXPECT_THAT(
        linesWith(objdump("--dylibs-used"), "compatibility"),
        UnorderedElementsAre(
            "/System/Library/Frameworks/AudioToolbox.framework/AudioToolbox"
            " (compatibility version 1.0.0, current version 1.0.0)",
            "/System/Library/Frameworks/CoreFoundation.framework/CoreFoundation"
            " (compatibility version 1.0.0, current version 1.0.0)",
            "/System/Library/Frameworks/Foundation.framework/Foundation"
            " (compatibility version 1.0.0, current version 1.0.0)",
            "/System/Library/PrivateFrameworks/Celestial.framework/Celestial"
            " (compatibility version 1.0.0, current version 1.0.0, weak)",
            "/System/Library/PrivateFrameworks/GraphicsServices.framework/GraphicsServices"
            " (compatibility version 1.0.0, current version 1.0.0)",
            "/usr/lib/libSystem.B.dylib (compatibility version 1.0.0, current version 1.0.0)",
            "/usr/lib/libflipswitch.dylib (compatibility version 0.0.0, current version 1.0.0)",
            "/usr/lib/libobjc.A.dylib (compatibility version 1.0.0, current version 1.0.0)"));
}

TEST_P(Module, ExportsItsFaceAndNothingElse) {
    EXPECT_THAT(lastWords(linesWith(objdump("--exports-trie"), "0x")),
                UnorderedElementsAreArray(face));
}

TEST_P(Module, KeepsNoNameOfItsInside) {
    EXPECT_THAT(column(names("--defined-only"), 0), UnorderedElementsAreArray(face));
}

TEST_P(Module, NeedsNothingOfTheCppRuntime) {
    const Words imports = column(names("--undefined-only"), 0);
    EXPECT_FALSE(imports.empty());
    EXPECT_THAT(imports, Each(Not(HasSubstr("__Z"))));
    EXPECT_THAT(imports, Each(Not(HasSubstr("__cxa"))));
    EXPECT_THAT(imports, Each(Not(HasSubstr("personality"))));
    EXPECT_THAT(imports, Each(Not(HasSubstr("_Unwind"))));
}

TEST_P(Module64, LetsAnExceptionOfTheHostPassThrough) {
    EXPECT_THAT(objdump("--unwind-info"),
                HasSubstr("Number of personality functions in array:  0x0"));
    EXPECT_THAT(objdump("--private-headers"), HasSubstr("sectname __unwind_info"));
}

TEST_P(Module, BindsTheClassesThatItSendsMessagesToAndNoneOfSpringBoards) {
    EXPECT_THAT(lastWords(linesWith(objdump("--section=__DATA,__objc_classrefs --bind"),
                                    "__objc_classrefs   0x")),
                UnorderedElementsAre(
                    "_OBJC_CLASS_$_FSSwitchPanel", "_OBJC_CLASS_$_NSBundle", "_OBJC_CLASS_$_NSDate",
                    "_OBJC_CLASS_$_NSDictionary", "_OBJC_CLASS_$_NSFileManager",
                    "_OBJC_CLASS_$_NSMutableDictionary", "_OBJC_CLASS_$_NSNumber",
                    "_OBJC_CLASS_$_NSObject", "_OBJC_CLASS_$_NSRunLoop", "_OBJC_CLASS_$_NSString",
                    "_OBJC_CLASS_$_NSThread", "(weak_import)"));
}

TEST_P(Module64, DefinesTheClassRingerSwitchWithoutFields) {
    const std::string metadata = metadataOf("RingerSwitch");
    EXPECT_THAT(lastWords(linesWith(metadata, "superclass")),
                ElementsAre("_OBJC_CLASS_$_NSObject", "_OBJC_METACLASS_$_NSObject"));
    EXPECT_THAT(lastWords(linesWith(metadata, "instanceSize")), ElementsAre("8", "40"));
    EXPECT_THAT(linesWith(metadata, "ivars 0x"), ElementsAre("ivars 0x0", "ivars 0x0"));
    // The class, its protocol, its methods; then the same for the class-level side.
    EXPECT_THAT(
        lastWords(linesWith(metadata, "name 0x")),
        ElementsAre("RingerSwitch", "stateForSwitchIdentifier:", "applyState:forSwitchIdentifier:",
                    "FSSwitchDataSource", "RingerSwitch", "load", "FSSwitchDataSource"));
}

TEST_P(Module64, TakesAndAnswersSwitchStatesAs32BitIntegers) {
    EXPECT_THAT(lastWords(linesWith(metadataOf("RingerSwitch"), "types 0x")),
                ElementsAre("i24@0:8@16", "v28@0:8i16@20", "v16@0:8"));
}

TEST_P(Module64, DefinesTheClassPrefsLoaderWithThreeFlagsBehindItsFirstWord) {
    const std::string metadata = metadataOf("PrefsLoader");
    EXPECT_THAT(lastWords(linesWith(metadata, "superclass")),
                ElementsAre("_OBJC_CLASS_$_NSObject", "_OBJC_METACLASS_$_NSObject"));
    EXPECT_THAT(lastWords(linesWith(metadata, "instanceStart")), ElementsAre("8", "40"));
    EXPECT_THAT(lastWords(linesWith(metadata, "instanceSize")), ElementsAre("11", "40"));
    EXPECT_THAT(lastWords(linesWith(metadata, "type 0x")), ElementsAre("B", "B", "B"));
    EXPECT_THAT(
        lastWords(linesWith(metadata, "attributes 0x")),
        ElementsAre("TB,VdefaultVibrationPattern", "TB,VvibrateWhenOff", "TB,VvibrateWhenOn"));
}

// Runtimes before system 10 look for the lists in __DATA only.
TEST_P(Module, ListsTwoClassesOfWhichTheLoadOfOneMustRun) {
    const auto entries = [](const std::string& section) {
        Words lines = linesWith(objdump("--section=__DATA," + section), "\t");
        for (std::string& line : lines) line.erase(0, line.find('\t'));
        return lines;
    };
    const std::string classes = entries("__objc_classlist").at(0);
    const std::string withLoad = entries("__objc_nlclslist").at(0);
    EXPECT_EQ(classes.size() - 1, 2 * (withLoad.size() - 1)) << "behind the tab";
    EXPECT_TRUE(classes.starts_with(withLoad));
}

// The linker does not merge what several objects say of themselves.
TEST_P(Module, TellsTheRuntimeOfItselfOnce) {
    const std::string sections =
        textOf("llvm-objdump-14 --section-headers " + builtModule(GetParam()));
    EXPECT_THAT(column(linesWith(sections, "__objc_imageinfo").at(0), 2), ElementsAre("00000008"));
}

TEST_P(Module, IsUnder100KB) {
    EXPECT_LT(std::filesystem::file_size(builtModule(GetParam())), 100'000U);
}

TEST(UniversalModule, HoldsTheModulesOfAllArchitecturesUnchanged) {
    const TemporaryFolder folder;
    const std::string slice = folder.path() / "slice";
    const std::string universal = builtModule("");
    for (const std::string architecture : {"armv7", "arm64", "x86_64"}) {
        textOf("llvm-lipo-14 " + universal + " -thin " + architecture + " -output " + slice);
        EXPECT_EQ(run("cmp " + slice + " " + builtModule(architecture)).status, 0) << architecture;
    }
    EXPECT_THAT(textOf("llvm-lipo-14 -archs " + universal), HasSubstr("x86_64 armv7 arm64"));
}

}  // namespace
}  // namespace quillet::test
