// SPDX-License-Identifier: MIT
//
// The signing tool on modules of every kind that it takes, made here, and on files that it refuses.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <ostream>

#include "packaging/ios/sign/module.h"
#include "packaging/ios/sign/signature.h"
#include "tests/artefacts/signed_module.h"

namespace quillet::test {
namespace {

using sign::signedModule;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

struct Processor {
    const char* name;
    std::uint32_t number;
    std::size_t pageSize;
};

void PrintTo(const Processor& processor, std::ostream* out) { *out << processor.name; }

std::size_t wordOf(const Processor& processor) { return processor.number >> 24 == 1 ? 8 : 4; }

void append(std::string& bytes, std::uint64_t value, std::size_t size = 4) {
    for (std::size_t i = 0; i < size; ++i) bytes.push_back(static_cast<char>(value >> 8 * i));
}

void put(std::string& bytes, std::size_t at, std::uint32_t value) {
    std::string word;
    append(word, value);
    bytes.replace(at, 4, word);
}

std::string sixteen(std::string name) {
    name.resize(16);
    return name;
}

/// A segment of one page with one section that fills it from `from` on, or with none.
std::string segment(const Processor& processor, const std::string& name, std::uint64_t page,
                    std::uint64_t size, std::uint32_t protection, std::uint64_t from) {
    const std::size_t word = wordOf(processor);
    const std::uint64_t start = page * processor.pageSize;
    std::string rest = sixteen(name);
    for (const std::uint64_t field : {start, processor.pageSize, start, size}) {
        append(rest, field, word);
    }
    const bool hasSection = name != "__LINKEDIT";
    for (const std::uint32_t field : {protection, protection, hasSection ? 1U : 0U, 0U}) {
        append(rest, field);
    }
    if (hasSection) {
        rest += sixteen("__section") + sixteen(name);
        append(rest, start + from, word);
        append(rest, size - from, word);
        append(rest, start + from);
        rest.resize(rest.size() + (word == 8 ? 28 : 24));
    }
    std::string command;
    append(command, word == 8 ? 0x19 : 0x01);
    append(command, rest.size() + 8);
    return command + rest;
}

/// A module as a linker leaves it, unsigned. `room` bytes are left behind its load commands.
std::string unsignedModule(const Processor& processor, std::size_t room = 16,
                           std::size_t linkEditSize = 40) {
    const std::size_t page = processor.pageSize;
    std::string commands;
    for (const std::uint32_t field : {0x25U, 16U, 0x70000U, 0x70000U}) append(commands, field);
    const std::size_t headerSize = wordOf(processor) == 8 ? 32 : 28;
    const std::size_t textCommand = segment(processor, "__TEXT", 0, page, 5, 0).size();
    const std::size_t dataCommand = textCommand;
    const std::size_t linkEditCommand = segment(processor, "__LINKEDIT", 2, 0, 1, 0).size();
    const std::size_t end =
        headerSize + commands.size() + textCommand + dataCommand + linkEditCommand;
    commands = segment(processor, "__TEXT", 0, page, 5, end + room) +
               segment(processor, "__DATA", 1, page, 3, 0) +
               segment(processor, "__LINKEDIT", 2, linkEditSize, 1, 0) + commands;
    std::string bytes;
    for (const std::uint64_t field :
         {wordOf(processor) == 8 ? std::uint64_t{0xfeedfacf} : 0xfeedface,
          std::uint64_t{processor.number}, std::uint64_t{9}, std::uint64_t{8}, std::uint64_t{4},
          commands.size()}) {
        append(bytes, field);
    }
    bytes.resize(headerSize);
    bytes += commands;
    bytes.resize(end + room);
    bytes.resize(2 * page + linkEditSize, '\x5a');
    return bytes;
}

constexpr Processor armv7 = {"armv7", 0x0c, 4096};
constexpr Processor arm64 = {"arm64", 0x0100000c, 16384};
constexpr Processor x86_64 = {"x86_64", 0x01000007, 4096};

class Signing : public testing::TestWithParam<Processor> {};

INSTANTIATE_TEST_SUITE_P(Each, Signing, testing::Values(armv7, arm64, x86_64),
                         [](const auto& instance) { return std::string(instance.param.name); });

std::vector<std::string> faultsIn(const std::string& module, const std::string& identifier) {
    return readSignedModule(module, identifier).faults;
}

TEST_P(Signing, GivesAnUnsignedModuleTheLoadCommandAndTheSignature) {
    EXPECT_THAT(faultsIn(signedModule(unsignedModule(GetParam()), "Name"), "Name"), IsEmpty());
}

TEST_P(Signing, LeavesAllElseAsItWas) {
    const std::string before = unsignedModule(GetParam());
    const std::string after = signedModule(before, "Name");
    const std::size_t page = GetParam().pageSize;
    EXPECT_EQ(after.substr(page, page + 40), before.substr(page));
    EXPECT_EQ(after.substr(2 * page + 40, 8), std::string(8, '\0')) << "to a place for a signature";
}

TEST_P(Signing, PutsItsSignatureInThePlaceOfTheOneThatIsThere) {
    const std::string once = signedModule(unsignedModule(GetParam()), "A longer name");
    EXPECT_THAT(faultsIn(signedModule(once, "Name"), "Name"), IsEmpty());
    EXPECT_EQ(signedModule(once, "A longer name"), once);
}

TEST_P(Signing, WithALinkEditSegmentThatGrowsBeyondItsPageTakesAnotherPage) {
    const std::string module = unsignedModule(GetParam(), 16, GetParam().pageSize - 16);
    EXPECT_THAT(faultsIn(signedModule(module, "Name"), "Name"), IsEmpty());
}

TEST_P(Signing, WithASignatureThatEndsWithItsPageTakesNoFurtherPage) {
    std::string name = "N";
    const std::string module = unsignedModule(GetParam(), 16, GetParam().pageSize - 3072);
    const std::size_t end = 3 * GetParam().pageSize;
    const std::size_t size = signedModule(module, name).size();
    name.append((end - size) / 2, 'n');  // it stands in both code directories
    const std::string result = signedModule(module, name);
    ASSERT_NEAR(static_cast<double>(result.size()), static_cast<double>(end), 1);
    EXPECT_THAT(faultsIn(result, name), IsEmpty());
}

struct Refused {
    const char* name;
    void (*alter)(std::string& module);
    const char* reason;
};

void PrintTo(const Refused& refused, std::ostream* out) { *out << refused.name; }

class Refusing : public testing::TestWithParam<Refused> {};

// Where the load commands of the 32-bit module that is altered begin.
constexpr std::size_t text = 28;
constexpr std::size_t data = text + 56 + 68;
constexpr std::size_t linkEdit = data + 56 + 68;
constexpr std::size_t systems = linkEdit + 56;

const Refused refused[] = {
    {"AnEmptyFile", [](std::string& m) { m.clear(); }, "Mach-O"},
    {"AUniversalFile", [](std::string& m) { m.replace(0, 4, "\xca\xfe\xba\xbe"); }, "Mach-O"},
    {"ABigEndianFile", [](std::string& m) { m.replace(0, 4, "\xfe\xed\xfa\xce"); }, "Mach-O"},
    {"AFileThatEndsInItsHeader", [](std::string& m) { m.resize(20); }, "too short"},
    {"AnotherProcessor", [](std::string& m) { put(m, 4, 18); }, "processor"},
    {"AProgram", [](std::string& m) { put(m, 12, 2); }, "no loadable bundle"},
    {"AFileThatEndsInItsCommands", [](std::string& m) { m.resize(300); }, "within its load"},
    {"ACommandOfNoSize", [](std::string& m) { put(m, text + 4, 0); }, "command of a wrong size"},
    {"ACommandBeyondTheOthers", [](std::string& m) { put(m, systems + 4, 24); },
     "command of a wrong size"},
    {"FewerCommandsThanBytes", [](std::string& m) { put(m, 16, 3); }, "than its header says"},
    {"MoreSectionsThanTheirCommandHolds", [](std::string& m) { put(m, text + 48, 2); },
     "segment of a wrong size"},
    {"NoText", [](std::string& m) { m[text + 8] = 'x'; }, "begin with a segment __TEXT"},
    {"ATextWithoutTheHeader", [](std::string& m) { put(m, text + 32, 4096); },
     "begin with a segment __TEXT"},
    {"NoLinkEdit", [](std::string& m) { m[linkEdit + 8] = 'x'; }, "end with a segment __LINKEDIT"},
    {"ALinkEditBeyondTheFile", [](std::string& m) { put(m, linkEdit + 32, 99999); },
     "end with a segment __LINKEDIT"},
    {"BytesBehindTheLinkEdit", [](std::string& m) { m += "more"; },
     "end with a segment __LINKEDIT"},
    {"AFullHeader", [](std::string& m) { m = unsignedModule(armv7, 15); }, "no room"},
    {"ASignatureThatIsNotTheEnd",
     [](std::string& m) {
         m = signedModule(m, "Name");
         put(m, systems + 16 + 12, 8);
     },
     "end with its signature"},
    {"ASignatureInACrookedPlace",
     [](std::string& m) {
         m = signedModule(m, "Name");
         put(m, systems + 16 + 8, 2 * 4096 + 49);
     },
     "end with its signature"},
    {"TwoSignatures",
     [](std::string& m) {
         m = signedModule(m, "Name");
         put(m, systems, 0x1d);
     },
     "two signatures"},
};

INSTANTIATE_TEST_SUITE_P(, Refusing, testing::ValuesIn(refused),
                         [](const auto& instance) { return std::string(instance.param.name); });

TEST_P(Refusing, SaysWhy) {
    std::string module = unsignedModule(armv7);
    GetParam().alter(module);
    try {
        signedModule(module, "Name");
        FAIL() << "signed";
    } catch (const sign::Refusal& refusal) {
        EXPECT_THAT(refusal.what(), HasSubstr(GetParam().reason));
    }
}

TEST(SigningUnderNoName, IsRefused) {
    EXPECT_THROW(signedModule(unsignedModule(arm64), ""), sign::Refusal);
}

}  // namespace
}  // namespace quillet::test
