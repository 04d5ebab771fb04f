// SPDX-License-Identifier: MIT
#include "platform/standin/device/complaints.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "platform/standin/runtime/dictionary_file.h"
#include "tests/support/program.h"
#include "tests/support/temporary_folder.h"

namespace quillet::test {
namespace {

using standin::Complaints;
using standin::Dictionary;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// A file of a dictionary, and what is said of it.
class ComplainedOf : public testing::Test {
protected:
    std::filesystem::path file() const { return folder_.path() / "file"; }
    std::optional<Dictionary> read() { return standin::readDictionary(file(), complaints_); }
    Complaints& complaints() { return complaints_; }
    const std::vector<std::string>& said() const { return said_; }

private:
    TemporaryFolder folder_;
    std::vector<std::string> said_;
    Complaints complaints_{[this](const std::string& text) { said_.push_back(text); }};
};

TEST_F(ComplainedOf, IsNeitherASoundFileNorOneThatIsNotThere) {
    EXPECT_EQ(read(), std::nullopt);
    ASSERT_TRUE(standin::writeDictionary(file(), Dictionary{{"key", true}}));
    EXPECT_EQ(read(), (Dictionary{{"key", true}}));
    EXPECT_THAT(said(), IsEmpty());
}

TEST_F(ComplainedOf, IsAFileWithoutADictionaryOnceAndWithoutConsequence) {
    writeText(file(), "no property list");
    for (int i = 0; i < 2; ++i) EXPECT_EQ(read(), std::nullopt);
    EXPECT_THAT(said(), ElementsAre(file().string() +
                                    ": counts as no file: " + standin::whyNoDictionary(file())));
    EXPECT_TRUE(complaints().isEmpty());
}

TEST_F(ComplainedOf, IsEachFileOfEachFaultOnce) {
    for (int i = 0; i < 2; ++i) {
        complaints().add("/a", "missing");
        complaints().add("/a", "torn");
        complaints().add("/b", "torn");
    }
    EXPECT_THAT(said(), ElementsAre("/a: missing", "/a: torn", "/b: torn"));
    EXPECT_FALSE(complaints().isEmpty());
}

}  // namespace
}  // namespace quillet::test
