// SPDX-License-Identifier: MIT
//
// The built modules and their code signatures, read byte by byte.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/artefacts/built.h"
#include "tests/artefacts/signed_module.h"
#include "tests/support/temporary_folder.h"

namespace quillet::test {
namespace {

using ::testing::Contains;
using ::testing::IsEmpty;
using ::testing::IsSupersetOf;
using ::testing::SizeIs;
using ::testing::StartsWith;

class Signature : public testing::TestWithParam<std::string> {
protected:
    static Words faultsIn(const std::string& module) {
        return readSignedModule(module, "Quillet").faults;
    }

    std::string module_ = readText(builtModule(GetParam()));
};

INSTANTIATE_TEST_SUITE_P(Built, Signature, testing::Values("armv7", "arm64", "x86_64"),
                         [](const auto& instance) { return instance.param; });

TEST_P(Signature, AndAllThatALoaderComparesIsAsItMustBe) {
    EXPECT_THAT(faultsIn(module_), IsEmpty());
}

// The reader that the test above trusts must see a wrong byte wherever one is.
TEST_P(Signature, WithAnyByteOfAnyFieldAlteredIsFoundWrongInThatField) {
    const std::vector<Field> fields = readSignedModule(module_, "Quillet").fields;
    ASSERT_THAT(fields, SizeIs(testing::Gt(80U)));
    for (const Field& field : fields) {
        for (size_t at = field.at; at < field.at + field.size; ++at) {
            std::string altered = module_;
            altered[at] = char(altered[at] ^ 1);
            ASSERT_THAT(faultsIn(altered), Contains(StartsWith(field.name)))
                << "byte " << at - field.at;
        }
    }
}

TEST_P(Signature, CoversEveryPageOfTheModule) {
    size_t pages = 0;
    const std::string prefix = "SHA-256: hash of page ";
    for (const Field& field : readSignedModule(module_, "Quillet").fields) {
        if (!field.name.starts_with(prefix)) continue;
        std::string altered = module_;
        // In the first page behind the load commands, without which nothing can be read.
        char& byte = altered[pages == 0 ? 1000 : pages * 4096];
        byte = char(byte ^ 1);
        const std::string page = std::to_string(pages++);
        EXPECT_THAT(faultsIn(altered),
                    IsSupersetOf({prefix + page, "SHA-1: hash of page " + page}));
    }
    EXPECT_GT(pages, 4U);
}

TEST_P(Signature, UnderANameThatItsLastPageDoesNotHoldTakesMorePages) {
    const TemporaryFolder folder;
    const std::string module = folder.path() / "module";
    const std::string name(20'000, 'n');
    writeText(module, module_);
    textOf(builtFolder() + "/tools/sign " + module + " " + name);
    EXPECT_THAT(readSignedModule(readText(module), name).faults, IsEmpty());
}

}  // namespace
}  // namespace quillet::test
