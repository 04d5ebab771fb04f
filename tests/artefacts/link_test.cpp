// SPDX-License-Identifier: MIT
//
// The link step for armv7 on objects that clang assembles: what it refuses, by name, and what it
// makes of the rest.

#include <gmock/gmock.h>

#include <stdexcept>

#include "packaging/ios/link/bytes.h"
#include "packaging/ios/link/module_writer.h"
#include "packaging/ios/link/stub_library.h"
#include "tests/support/program.h"
#include "tests/support/temporary_folder.h"

namespace quillet::linker {
namespace {

using ::testing::HasSubstr;
using ::testing::UnorderedElementsAre;

const std::string& stub() {
    static const std::string text =
        "--- !tapi-tbd\n"
        "targets: [ armv7-ios, arm64-ios ]\n"
        "install-name: /usr/lib/libOne.dylib\n"
        "compatibility-version: 3\n"
        "exports:\n"
        "  - targets: [ armv7-ios, arm64-ios ]\n"
        "    symbols: [ _one, _two,\n"
        "               _three ]\n"
        "    objc-classes: [ Thing ]\n"
        "...\n";
    return text;
}

std::string with(std::string text, const std::string& part, const std::string& other) {
    return text.replace(text.find(part), part.size(), other);
}

/// The object that clang makes of an assembly source for `target`.
std::string assembled(const std::string& source, const std::string& target = "armv7-apple-ios7.0") {
    const test::TemporaryFolder folder;
    test::writeText(folder.path() / "source.s", source);
    const test::Outcome outcome =
        test::runInShell("clang-14 -c --target=" + target + " source.s -o object", folder.path());
    if (outcome.status != 0) throw std::runtime_error(outcome.errors);
    return test::readText(folder.path() / "object");
}

std::string linked(const std::string& object, const std::string& exports = "") {
    return linkModule(object, exports, {readStubLibrary(stub())});
}

/// What the link step says to an assembly source that it refuses.
std::string refusal(const std::string& source, const std::string& exports = "") {
    try {
        linked(assembled(source), exports);
    } catch (const LinkError& error) {
        return error.what();
    }
    return "(linked)";
}

std::uint32_t wordAt(const std::string& module, std::size_t at) {
    return recordAt<std::uint32_t>(module, at);
}

TEST(Linking, RefusesRelocationsThatItDoesNotKnowByName) {
    EXPECT_THAT(refusal("movw r0, :lower16:_one"), HasSubstr("ARM_RELOC_HALF, external"));
    EXPECT_THAT(refusal("movt r0, :upper16:(_a - _b)\n_b: .long 0\n.data\n_a: .long 0"),
                HasSubstr("ARM_RELOC_HALF_SECTDIFF"));
    EXPECT_THAT(refusal(".thumb\nb.w _one"), HasSubstr("ARM_THUMB_RELOC_BR22"));
    EXPECT_THAT(refusal(".data\n_a: .long 0, 0\n.long _a + 4"),
                HasSubstr("ARM_RELOC_VANILLA, scattered"));
    EXPECT_THAT(refusal(".data\n.short _one, 0"),
                HasSubstr("ARM_RELOC_VANILLA, external, length 1"));
}

TEST(Linking, RefusesSectionsThatItDoesNotKnowByName) {
    EXPECT_THAT(refusal(".mod_init_func\n.long 0"), HasSubstr("__DATA,__mod_init_func"));
    EXPECT_THAT(refusal(".section __TEXT,__eh_frame\n.long 0"), HasSubstr("__TEXT,__eh_frame"));
    EXPECT_THAT(refusal(".section __DATA,__objc_classrefs,literal_pointers\n.long 0"),
                HasSubstr("__DATA,__objc_classrefs of type 0x5"));
    EXPECT_THAT(refusal(".section __DWARF,__debug_info,regular,debug\n.long 0"),
                HasSubstr("__DWARF,__debug_info"));
}

TEST(Linking, RefusesLoadCommandsThatItDoesNotKnowByNumber) {
    EXPECT_THAT(refusal(".linker_option \"-lz\""), HasSubstr("load command 0x2D"));
    EXPECT_THAT(refusal(".build_version ios, 12, 0"), HasSubstr("load command 0x32"));
}

TEST(Linking, RefusesSymbolsThatItDoesNotKnowByName) {
    EXPECT_THAT(refusal(".globl _f\n.thumb\n.thumb_func _f\n_f: bx lr"),
                HasSubstr("Thumb code: _f"));
    EXPECT_THAT(refusal(".comm _x, 4, 2"), HasSubstr("_x"));
    EXPECT_THAT(refusal(".globl _five\n_five = 5"), HasSubstr("_five"));
    EXPECT_THAT(refusal(".globl _w\n.weak_definition _w\n_w: bx lr"), HasSubstr("_w"));
    EXPECT_THAT(refusal(".weak_reference _one\nbl _one"), HasSubstr("may be missing: _one"));
}

TEST(Linking, RefusesAddressesThatItCannotSet) {
    EXPECT_THAT(refusal("nop\n.long _one"), HasSubstr("an absolute address in __text"));
    EXPECT_THAT(refusal(".data\n.long _one + 4"), HasSubstr("beside an imported symbol: _one"));
    EXPECT_THAT(refusal("bl _one + 4"), HasSubstr("not plainly to the start of _one"));
    EXPECT_THAT(refusal("blx _one"), HasSubstr("_one"));
    EXPECT_THAT(refusal(".data\n.byte 0\n.long _one"), HasSubstr("beside the words of __data"));
    EXPECT_THAT(refusal("_f: bx lr\n.data\n.p2align 13\n.long 0"), HasSubstr("alignment"));
    EXPECT_THAT(refusal(".bss\n.space 0x7FFFFFFF"), HasSubstr("too large: __bss"));
    EXPECT_THAT(refusal(".bss\n.space 0xFF001"), HasSubstr("larger than its stubs reach"));
}

TEST(Linking, RefusesNamesThatAreNotThere) {
    EXPECT_THAT(refusal("bl _four"), HasSubstr("no library has _four"));
    EXPECT_THAT(refusal("_f: bx lr", "_f\n"), HasSubstr("does not offer _f"));
    EXPECT_THAT(refusal(".globl _f\n.private_extern _f\n_f: bx lr", "_f\n"),
                HasSubstr("does not offer _f"));
    EXPECT_THAT(refusal("bl _one", "_one\n"), HasSubstr("does not offer _one"));
}

TEST(Linking, RefusesOtherProcessorsAndFilesThatAreNoObjects) {
    const auto refuses = [](const std::string& file, const char* why) {
        try {
            linked(file);
            ADD_FAILURE() << why;
        } catch (const LinkError& error) {
            EXPECT_THAT(error.what(), HasSubstr(why));
        }
    };
    refuses(assembled("ret", "arm64-apple-ios7.0"), "no 32-bit Mach-O file");
    refuses(assembled("bx lr", "armv7s-apple-ios7.0"), "not for armv7");
    refuses(linked(assembled("bx lr")), "no object file");
    refuses("", "cut short");
}

TEST(Linking, RefusesAnObjectThatIsCutShortAnywhere) {
    const std::string object = assembled(
        "_f: bl _one\n.data_region\n.long _d - _f\n.end_data_region\n.data\n_d: .long _f, _two");
    linked(object);
    for (std::size_t size = 0; size < object.size(); ++size) {
        EXPECT_THROW(linked(object.substr(0, size)), LinkError) << size;
    }
}

// Code begins in the second page, then come the stubs, of eight bytes each; data in the third page.
TEST(Linking, LeadsCallsToFunctionsAndToStubsAndKeepsTheirCondition) {
    const std::string module =
        linked(assembled("_f: beq _g\nbl _one\nblne _two\nb _one\n_g: bl _f"));
    EXPECT_EQ(wordAt(module, 0x1000), 0x0A000002U) << "beq, 2 words behind the next but one";
    EXPECT_EQ(wordAt(module, 0x1004), 0xEB000002U) << "the first stub is at 0x1014";
    EXPECT_EQ(wordAt(module, 0x1008), 0x1B000003U) << "the second one at 0x101C";
    EXPECT_EQ(wordAt(module, 0x100C), 0xEA000000U);
    EXPECT_EQ(wordAt(module, 0x1010), 0xEBFFFFFAU) << "six words back";
}

TEST(Linking, MakesStubsThatJumpToWhereTheirPointerLeads) {
    const std::string module = linked(assembled("bl _one\nbl _two"));
    EXPECT_EQ(wordAt(module, 0x1008), 0xE28FCA00U) << "add ip, pc, #0";
    EXPECT_EQ(wordAt(module, 0x100C), 0xE59CFFF0U) << "ldr pc, [ip, #0xFF0]: of 0x2000";
    EXPECT_EQ(wordAt(module, 0x1010), 0xE28FCA00U);
    EXPECT_EQ(wordAt(module, 0x1014), 0xE59CFFECU) << "of 0x2004";
    const std::string far = linked(assembled("bl _one\n.data\n.space 0xABCD0\n"));
    EXPECT_EQ(wordAt(far, 0x1004), 0xE28FCAACU) << "add ip, pc, #0xAC000";
    EXPECT_EQ(wordAt(far, 0x1008), 0xE59CFCC4U) << "the pointer at 0xADCD0, from 0x100C";
}

TEST(Linking, SetsAddressesAndDifferences) {
    const std::string module =
        linked(assembled(".long 0\n_f: .long _d + 8 - _f\n"
                         ".data\n.long 0\n_d: .long _f\n.globl _e\n_e: .long _e, _one"));
    EXPECT_EQ(wordAt(module, 0x1004), 0x2004U + 8 - 0x1004);
    EXPECT_EQ(wordAt(module, 0x2004), 0x1004U);
    EXPECT_EQ(wordAt(module, 0x2008), 0x2008U);
    EXPECT_EQ(wordAt(module, 0x200C), 0U) << "the dynamic linker's to set";
}

TEST(Linking, DependsOnNothingButItsArguments) {
    const std::string object = assembled(".globl _f\n_f: bl _one\n.data\n.long _f");
    EXPECT_EQ(linked(object, "_f\n"), linked(object, "# a comment\n\n_f\n"));
}

TEST(Linking, GivesModulesThatDifferInAnythingDifferentUuids) {
    const auto uuid = [](const std::string& source, const std::string& exports) {
        const std::string module = linked(assembled(source), exports);
        const std::size_t command = module.find(std::string("\x1B\0\0\0\x18\0\0\0", 8));
        return module.substr(command + 8, 16);
    };
    const std::string source = ".globl _f\n_f: mov r0, #0";
    EXPECT_EQ(uuid(source, "").size(), 16U);
    EXPECT_EQ(uuid(source, ""), uuid(source, ""));
    EXPECT_NE(uuid(source, ""), uuid(source, "_f\n"));
    EXPECT_NE(uuid(source, ""), uuid(with(source, "#0", "#1"), ""));
}

TEST(StubLibrary, SaysWhatTheDeviceHas) {
    const StubLibrary library = readStubLibrary(stub());
    EXPECT_EQ(library.name, "/usr/lib/libOne.dylib");
    EXPECT_EQ(library.compatibilityVersion, 0x30000U);
    EXPECT_FALSE(library.isWeak);
    EXPECT_THAT(library.symbols,
                UnorderedElementsAre("_one", "_two", "_three", "_OBJC_CLASS_$_Thing",
                                     "_OBJC_METACLASS_$_Thing"));
}

TEST(StubLibrary, HasVersion1UnlessItSaysOtherwise) {
    EXPECT_EQ(readStubLibrary(with(stub(), "compatibility-version: 3\n", "")).compatibilityVersion,
              0x10000U);
    EXPECT_EQ(readStubLibrary(with(stub(), "version: 3", "version: 0")).compatibilityVersion, 0U);
    EXPECT_THROW(readStubLibrary(with(stub(), "version: 3", "version: 1.2")), LinkError);
}

TEST(StubLibrary, IsRefusedUnlessItIsForTheProcessor) {
    EXPECT_THROW(readStubLibrary(with(stub(), "armv7-ios", "armv7s-ios")), LinkError);
    EXPECT_THROW(readStubLibrary(with(stub(), "  - targets: [ armv7-ios,", "  - targets: [")),
                 LinkError);
    EXPECT_THROW(readStubLibrary(with(stub(), "install-name", "name")), LinkError);
    EXPECT_THROW(readStubLibrary(with(stub(), "exports", "imports")), LinkError);
    EXPECT_THROW(readStubLibrary(""), LinkError);
}

}  // namespace
}  // namespace quillet::linker
