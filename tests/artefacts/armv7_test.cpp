// SPDX-License-Identifier: MIT
//
// The module that the project's own link step makes, told by tools that had no part in it.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <map>
#include <regex>
#include <set>

#include "tests/artefacts/built.h"
#include "tests/support/temporary_folder.h"

namespace quillet::test {
namespace {

using ::testing::AllOf;
using ::testing::Contains;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::Ge;
using ::testing::HasSubstr;
using ::testing::IsSubsetOf;
using ::testing::Lt;
using ::testing::Not;
using ::testing::SizeIs;

using Places = std::set<std::uint32_t>;

std::string objdump(const std::string& options, const std::string& architecture = "armv7") {
    return textOf("llvm-objdump-14 --macho " + options + " " + builtModule(architecture));
}

/// The groups of every match of `pattern` in the lines of `text`.
std::vector<Words> found(const std::string& text, const std::string& pattern) {
    std::vector<Words> all;
    const std::regex regex(pattern);
    for (const std::string& line : linesWith(text, "")) {
        for (std::sregex_iterator match(line.begin(), line.end(), regex), end; match != end;
             ++match) {
            Words& groups = all.emplace_back();
            for (size_t i = 1; i < match->size(); ++i) groups.push_back(match->str(i));
        }
    }
    return all;
}

std::uint32_t number(const std::string& text, int base = 16) {
    return static_cast<std::uint32_t>(std::stoul(text, nullptr, base));
}

/// The numbers in the pattern's one group.
Places places(const std::string& text, const std::string& pattern) {
    Places all;
    for (const Words& groups : found(text, pattern)) all.insert(number(groups[0]));
    return all;
}

/// A field of each load command or section that has it, in their order.
Words fields(const std::string& name) {
    Words values;
    for (const Words& groups : found(objdump("--private-headers"), "^" + name + " (.*)")) {
        values.push_back(groups[0]);
    }
    return values;
}

std::vector<std::uint32_t> numbers(const std::string& name, int base) {
    std::vector<std::uint32_t> values;
    for (const std::string& value : fields(name)) values.push_back(number(value, base));
    return values;
}

/// The name that is bound to each pointer, and the library it is looked for in.
std::map<std::uint32_t, Words> binds(const std::string& architecture = "armv7") {
    std::map<std::uint32_t, Words> all;
    for (const Words& bind :
         found(objdump("--bind --lazy-bind", architecture),
               "(0x\\w+) +(?:pointer +0 +)?(\\w+) +(\\S+)(?: \\((\\w+)\\))?$")) {
        all[number(bind[0])] = {bind[2], bind[1], bind[3]};
    }
    return all;
}

/// The name at each address in the tables of symbols.
std::map<std::string, std::uint32_t> symbols(const std::string& command) {
    std::map<std::string, std::uint32_t> all;
    for (const Words& symbol : found(textOf(command), "^(\\w{8}) \\w (.*)")) {
        all[symbol[1]] = number(symbol[0]);
    }
    return all;
}

TEST(Armv7Module, HasThreeSegmentsOfWholePagesOneBehindTheOther) {
    EXPECT_THAT(fields("segname"),
                AllOf(Contains("__TEXT"), Contains("__DATA"), Contains("__LINKEDIT")));
    const auto address = numbers("vmaddr", 16), size = numbers("vmsize", 16);
    const auto offset = numbers("fileoff", 10), fileSize = numbers("filesize", 10);
    ASSERT_THAT(address, SizeIs(3));
    for (size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(address[i], i == 0 ? 0 : address[i - 1] + size[i - 1]);
        EXPECT_EQ(offset[i], i == 0 ? 0 : offset[i - 1] + fileSize[i - 1]);
        EXPECT_EQ(size[i], (fileSize[i] + 0xFFF) / 0x1000 * 0x1000);
        EXPECT_EQ(offset[i] % 0x1000, 0U);
    }
    EXPECT_EQ(offset[2] + fileSize[2], std::filesystem::file_size(builtModule("armv7")));
    EXPECT_THAT(fields("initprot"), ElementsAre("r-x", "rw-", "r--"));
    EXPECT_EQ(fields("maxprot"), fields("initprot"));
}

// The signing tool sees to the last segment: what it is given must be a module too.
TEST(Armv7Module, HasSegmentsOfWholePagesBeforeItIsSigned) {
    const TemporaryFolder folder;
    const std::string module = folder.path() / "module";
    textOf(builtFolder() + "/tools/link " + builtFolder() + "/armv7/Quillet.o " + module +
           " packaging/ios/exports.txt packaging/ios/stubs/*.tbd"
           " -weak packaging/ios/stubs/optional/Celestial.tbd");
    const auto sizes =
        found(textOf("llvm-objdump-14 --macho --private-headers " + module), "^vmsize (0x\\w+)$");
    EXPECT_THAT(sizes, SizeIs(3));
    for (const Words& size : sizes) EXPECT_EQ(number(size[0]) % 0x1000, 0U) << size[0];
}

TEST(Armv7Module, HasItsSectionsInTheirSegmentsOneBehindTheOther) {
    const auto segments = numbers("vmaddr", 16);
    const auto addresses = numbers("addr", 16), sizes = numbers("size", 16);
    const auto offsets = numbers("offset", 10);
    const Words types = fields("type"), alignments = fields("align 2\\^\\d+");
    // The commands name a section and then its segment.
    const Words lines = linesWith(objdump("--private-headers"), "e");
    std::vector<bool> isData;
    for (size_t i = 0; i + 1 < lines.size(); ++i) {
        if (lines[i].starts_with("sectname")) isData.push_back(lines[i + 1] == "segname __DATA");
    }
    ASSERT_THAT(isData, SizeIs(Ge(15U)));
    EXPECT_GE(addresses[0], 0x1000U) << "room for load commands";
    for (size_t i = 0; i < isData.size(); ++i) {
        const bool isFirst = i == 0 || isData[i] != isData[i - 1];
        const std::uint32_t start = isFirst ? segments[isData[i]] : addresses[i - 1] + sizes[i - 1];
        EXPECT_GE(addresses[i], start) << i;
        EXPECT_LE(addresses[i] + sizes[i], segments[isData[i] + 1U]) << i;
        EXPECT_EQ(offsets[i], types[i] == "S_ZEROFILL" ? 0 : addresses[i]) << i;
        EXPECT_EQ(addresses[i] % number(alignments[i].substr(1), 10), 0U) << i;
    }
}

TEST(Armv7Module, IsForTheFirstSystemAndProcessor) {
    const std::string commands = objdump("--private-headers");
    EXPECT_THAT(commands, HasSubstr("cmd LC_VERSION_MIN_IPHONEOS\n  cmdsize 16\n"
                                    "  version 7.0\n      sdk 7.0\n"));
    EXPECT_THAT(commands, HasSubstr("cmd LC_ENCRYPTION_INFO\n"));
    EXPECT_THAT(numbers("cryptoff", 10), ElementsAre(0x1000));
    EXPECT_EQ(numbers("cryptsize", 10)[0] + 0x1000, numbers("filesize", 10)[0]);
    EXPECT_THAT(fields("cryptid"), ElementsAre("0"));
    EXPECT_THAT(fields("uuid"), SizeIs(1));
}

TEST(Armv7Module, LeavesNoRelocationToTheLoader) {
    EXPECT_THAT(fields("nreloc"), Each("0"));
    EXPECT_THAT(fields("nextrel"), ElementsAre("0"));
    EXPECT_THAT(fields("nlocrel"), ElementsAre("0"));
}

TEST(Armv7Module, TellsTheLoaderOfEveryPointerIntoItself) {
    const auto segments = numbers("vmaddr", 16);
    Places pointers;
    for (const Words& row : found(objdump("--full-contents"), "^(\\w{4}) ((?:\\w{8} )+)")) {
        std::uint32_t at = number(row[0]);
        for (const Words& bytes : found(row[1], "(\\w{8})")) {
            const std::uint32_t word = __builtin_bswap32(number(bytes[0]));
            const bool isPlace = word >= 0x1000 && word < segments[2];
            if (at >= segments[1] && isPlace) pointers.insert(at);
            at += 4;
        }
    }
    EXPECT_THAT(pointers, SizeIs(Ge(80U)));
    EXPECT_EQ(places(objdump("--rebase"), "(0x\\w+) +pointer$"), pointers);
}

// The other modules are another linker's work.
TEST(Armv7Module, BindsEveryImportToTheLibraryThatItHasInTheModuleForArm64) {
    std::map<std::string, Words> libraries;
    for (const auto& [place, bind] : binds("arm64")) libraries[bind[0]] = bind;
    for (const auto& [place, bind] : binds()) {
        if (bind[0] == "_memset" || bind[0] == "_free")
            libraries[bind[0]] = {bind[0], "libSystem", ""};
        EXPECT_EQ(bind, libraries[bind[0]]);
    }
    EXPECT_THAT(binds(), SizeIs(Ge(40U)));
    EXPECT_THAT(libraries["_OBJC_CLASS_$_AVSystemController"][2], "weak_import");
}

TEST(Armv7Module, HasTheSymbolsThatItsTablesForTheLoaderHave) {
    std::map<std::string, std::uint32_t> exports;
    for (const Words& one : found(objdump("--exports-trie"), "^(0x\\w+) +(\\S+)")) {
        exports[one[1]] = number(one[0]);
    }
    EXPECT_EQ(symbols("llvm-nm-14 " + builtModule("armv7")), exports);
    std::set<std::string> imports, undefined;
    for (const auto& [place, bind] : binds()) imports.insert(bind[0] + " (from " + bind[1] + ")");
    for (const Words& one :
         found(textOf("llvm-nm-14 -m " + builtModule("armv7")), "^\\(undefined\\).* (_.*)")) {
        undefined.insert(one[0]);
    }
    EXPECT_EQ(undefined, imports);
}

TEST(Armv7Module, CallsItsOwnFunctionsAndStubsOnly) {
    const Places stubs = places(objdump("--indirect-symbols"), "^(0x\\w+) +\\d+ ");
    Places known = places(objdump("--function-starts"), "^(\\w{8})$");
    known.insert(stubs.begin(), stubs.end());
    const Places called = places(objdump("--disassemble"), "\tblx?(?:\\w\\w)?\t(0x\\w+)");
    EXPECT_THAT(called, SizeIs(Ge(25U)));
    EXPECT_THAT(called, IsSubsetOf(known));
}

TEST(Armv7Module, HasStubsThatReadThePointerOfTheSymbolThatTheyAreFor) {
    const std::map<std::uint32_t, Words> bound = binds();
    const std::string code = objdump("--section=__TEXT,__stubs");
    const auto adds = found(code, "(\\w+):.*\tadd\tr12, pc, #(\\d+), #20$");
    const auto loads = found(code, "\tldr\tpc, \\[r12, #(\\d+)\\]$");
    const auto names = found(objdump("--indirect-symbols"), "^(0x\\w+) +\\d+ (\\S+)");
    ASSERT_THAT(adds, SizeIs(Ge(20U)));
    ASSERT_EQ(adds.size(), loads.size());
    for (size_t i = 0; i < adds.size(); ++i) {
        const std::uint32_t stub = number(adds[i][0]);
        const std::uint32_t pointer =
            stub + 8 + (number(adds[i][1], 10) << 12) + number(loads[i][0], 10);
        EXPECT_EQ(number(names[i][0]), stub);
        ASSERT_TRUE(bound.contains(pointer)) << names[i][1];
        EXPECT_EQ(bound.at(pointer)[0], names[i][1]);
    }
}

TEST(Armv7Module, SaysWhereFunctionsBeginAndWhereDataLiesInCode) {
    const std::string object = builtFolder() + "/armv7/Quillet.o";
    const auto moved = [](Places places) {
        Places all;
        for (const std::uint32_t place : places) all.insert(place + 0x1000);
        return all;
    };
    EXPECT_EQ(places(objdump("--function-starts"), "^(\\w{8})$"),
              moved(places(textOf("llvm-nm-14 " + object), "^(\\w+) [tT] ")));
    const auto data = [](const std::string& file) {
        return places(textOf("llvm-objdump-14 --macho --data-in-code " + file),
                      "^(0x\\w+) +\\d+ DATA$");
    };
    EXPECT_THAT(data(object), SizeIs(Ge(40U)));
    EXPECT_EQ(data(builtModule("armv7")), moved(data(object)));
}

TEST(Armv7Module, HasNoInstructionThatTheFirstArmv7ProcessorsLack) {
    const std::string code = objdump("--disassemble");
    EXPECT_THAT(found(code, "\t(bl)\t"), SizeIs(Ge(100U))) << "ARM code";
    for (const char* const lacking : {"sdiv", "udiv", "vfma", "vfms", "lda\t", "<unknown>"}) {
        EXPECT_THAT(code, Not(HasSubstr(lacking)));
    }
}

TEST(Armv7Module, TakesAndAnswersSwitchStatesAs32BitIntegers) {
    const std::string metadata = objdump("--objc-meta-data");
    std::vector<Words> methods;
    for (const char* const name :
         {"stateForSwitchIdentifier:", "applyState:forSwitchIdentifier:"}) {
        const size_t method = metadata.find(std::string(" ") + name + "\n");
        ASSERT_NE(method, std::string::npos) << name;
        methods.push_back(found(metadata.substr(method), "^types 0x\\w+ (.*)").at(0));
    }
    EXPECT_THAT(methods, ElementsAre(Words{"i12@0:4@8"}, Words{"v16@0:4i8@12"}));
}

TEST(Armv7Module, DerivesItsClassFromTheRootClass) {
    const auto defined = symbols("llvm-nm-14 " + builtModule("armv7"));
    const auto bound = binds();
    const std::uint32_t cls = defined.at("_OBJC_CLASS_$_RingerSwitch");
    const std::uint32_t metaclass = defined.at("_OBJC_METACLASS_$_RingerSwitch");
    EXPECT_EQ(bound.at(cls + 4)[0], "_OBJC_CLASS_$_NSObject");
    EXPECT_EQ(bound.at(metaclass)[0], "_OBJC_METACLASS_$_NSObject");
    EXPECT_EQ(bound.at(metaclass + 4)[0], "_OBJC_METACLASS_$_NSObject");
}

TEST(Armv7Module, SpeaksOfFlagsAndLengthsInTheTypesOf32BitDevices) {
    const std::string types = objdump("--section=__TEXT,__objc_methtype");
    EXPECT_THAT(types, HasSubstr("c12@0:4@8\n"));
    EXPECT_THAT(types, HasSubstr("@24@0:4i8f12f16@20\n"));
    EXPECT_THAT(found(types, "(\\bB)"), SizeIs(0));
}

}  // namespace
}  // namespace quillet::test
