// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <filesystem>
#include <stdexcept>

#include "springboard/options.h"
#include "tests/support/temporary_folder.h"

namespace quillet::test {
namespace {

namespace fs = std::filesystem;

class BundleBeside : public testing::Test {
protected:
    /// A link to the program of that path.
    fs::path linkTo(const fs::path& program) const {
        fs::create_symlink(program, link());
        return link();
    }
    fs::path link() const { return folder_.path() / "exe"; }

private:
    TemporaryFolder folder_;
};

TEST_F(BundleBeside, TheProgramIsAnAbsolutePath) {
    EXPECT_EQ(bundleBeside(linkTo("/a/folder/springboard")), "/a/folder/Quillet.bundle");
}

TEST_F(BundleBeside, AProgramThatWasRemovedIsWhereTheProgramWas) {
    EXPECT_EQ(bundleBeside(linkTo("/a/folder/springboard (deleted)")), "/a/folder/Quillet.bundle");
}

TEST_F(BundleBeside, AProgramThatCannotBeFoundIsNoneOfTheWorkingFolder) {
    EXPECT_THROW(bundleBeside(link()), std::runtime_error);
    EXPECT_THROW(bundleBeside(linkTo("(unreachable)/springboard")), std::runtime_error);
}

}  // namespace
}  // namespace quillet::test
