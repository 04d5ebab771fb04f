// SPDX-License-Identifier: MIT
//
// All that is made for devices, made once more in another folder, in another time zone, with
// another mask for new files and in another locale. It must have the same bytes.

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/artefacts/built.h"
#include "tests/artefacts/device_package.h"

namespace quillet::test {
namespace {

namespace fs = std::filesystem;

class AnotherBuild : public testing::Test {
protected:
    static void SetUpTestSuite() {
        fs::remove_all(copy_);
        fs::create_directories(copy_);
        textOf(
            "cp -R CHANGELOG.md CMakeLists.txt packaging platform prefs resources script settings"
            " switch " +
            copy_);
        const std::string there =
            "cd " + copy_ + " && umask 077 && export TZ=Asia/Tokyo LANG=C.UTF-8 && ";
        textOf(there + "BUILD_DIR=built script/build-ios");
        textOf(there + makePackages("built", "built"));
        textOf(there + makeRepository("built/source", "built"));
    }
    static void TearDownTestSuite() { fs::remove_all(copy_); }

    static void expectSame(const std::string& path, const std::string& other) {
        const Outcome outcome = run("diff -r " + path + " " + other);
        EXPECT_EQ(outcome.status, 0) << outcome.output << outcome.errors;
    }

    static inline const std::string copy_ = QUILLET_PACKAGES "/copy";
    static inline const std::string built_ = copy_ + "/built";
};

TEST_F(AnotherBuild, GivesTheSameBundles) {
    for (const std::string folder : {"", "/armv7", "/arm64", "/x86_64", "/device", "/rootless"}) {
        expectSame(builtFolder() + folder + "/Quillet.bundle", built_ + folder + "/Quillet.bundle");
    }
}

TEST_F(AnotherBuild, GivesTheSamePackages) {
    for (const DevicePackage& package : devicePackages) {
        expectSame(packageIn(packages(), package.architecture),
                   packageIn(built_, package.architecture));
    }
}

TEST_F(AnotherBuild, GivesTheSameSourceForPackageManagers) {
    expectSame(repository(), built_ + "/source/repository");
}

}  // namespace
}  // namespace quillet::test
