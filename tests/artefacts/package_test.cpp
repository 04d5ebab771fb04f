// SPDX-License-Identifier: MIT
//
// The package for devices, as dpkg reads it.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "tests/artefacts/built.h"

namespace quillet::test {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::StartsWith;

namespace fs = std::filesystem;

std::string package() { return packageIn(builtFolder()); }

std::string field(const std::string& name) {
    return textOf("dpkg-deb --field " + package() + " " + name);
}

/// The pre-install check of the package, run by dpkg's rules on a root folder.
class PreInstallCheck : public testing::Test {
protected:
    PreInstallCheck() {
        fs::remove_all(root_);
        fs::create_directories(root_ + "/usr/lib");
        textOf("dpkg-deb --control " + package() + " " + control_);
    }
    ~PreInstallCheck() override {
        fs::remove_all(root_);
        fs::remove_all(control_);
    }

    Outcome check(const std::string& action) const {
        return run("DPKG_ROOT=" + root_ + " " + control_ + "/preinst " + action + " 2>&1");
    }

    std::string root_ = builtFolder() + "/device";
    std::string control_ = builtFolder() + "/control";
};

TEST(Package, IsNamedAfterTheBundleAndMeantForDevices) {
    EXPECT_EQ(field("Package"), "com.velk.switch.ringer\n");
    EXPECT_EQ(field("Architecture"), "iphoneos-arm\n");
    EXPECT_EQ(field("Depends"), "firmware (>= 7.0)\n");
    const std::string properties = textOf("cat resources/Info.plist");
    EXPECT_THAT(properties, HasSubstr("<string>com.velk.switch.ringer</string>"));
    std::string version = field("Version");
    version.pop_back();
    EXPECT_THAT(properties, HasSubstr("<string>" + version + "</string>"));
}

TEST(Package, IsMadeOfGzipMembersThatOldInstallersRead) {
    EXPECT_THAT(column(textOf("ar t " + package()), 0),
                ElementsAre("debian-binary", "control.tar.gz", "data.tar.gz"));
    EXPECT_EQ(textOf("ar p " + package() + " data.tar.gz | od -An -N2 -tx1"), " 1f 8b\n");
}

TEST(Package, HoldsTheBundleAndNothingElse) {
    std::vector<std::string> expected = {"./", "./Library/", "./Library/Switches/"};
    const fs::path source = QUILLET_ROOT "/resources";
    const std::string bundle = "./Library/Switches/Quillet.bundle/";
    expected.insert(expected.end(), {bundle, bundle + "Quillet"});
    for (const auto& entry : fs::recursive_directory_iterator(source)) {
        expected.push_back(bundle + fs::relative(entry.path(), source).string() +
                           (entry.is_directory() ? "/" : ""));
    }
    EXPECT_THAT(column(textOf("dpkg-deb --contents " + package()), 5),
                testing::UnorderedElementsAreArray(expected));
}

TEST(Package, GivesEveryFileToRootAndOnlyTheModuleTheRightToBeRun) {
    const std::string list =
        textOf("dpkg-deb --fsys-tarfile " + package() + " | tar --numeric-owner --list --verbose");
    EXPECT_THAT(column(list, 1), Each("0/0"));
    for (const std::string& line : linesWith(list, "")) {
        const bool folder = line.ends_with("/");
        const bool module = line.ends_with("/Quillet");
        EXPECT_THAT(line, StartsWith(folder   ? "drwxr-xr-x "
                                     : module ? "-rwxr-xr-x "
                                              : "-rw-r--r-- "));
    }
}

TEST(Package, HoldsTheModuleForDevices) {
    EXPECT_EQ(
        run("dpkg-deb --fsys-tarfile " + package() +
            " | tar --extract --to-stdout ./Library/Switches/Quillet.bundle/Quillet | cmp - " +
            builtModule("arm64"))
            .status,
        0);
}

// Another folder, another time zone, another mask for new files, another locale.
TEST(Package, HasTheSameBytesWhereverTheSameCommitIsBuilt) {
    const std::string copy = builtFolder() + "/copy";
    fs::remove_all(copy);
    fs::create_directories(copy);
    textOf("cp -R platform switch settings prefs resources packaging script " + copy);
    const std::string script = "script/package >/dev/null";
    textOf("SOURCE_DATE_EPOCH=1700000000 BUILD_DIR=" + copy + "/here " + script);
    textOf("cd " + copy + " && umask 077 && SOURCE_DATE_EPOCH=1700000000 TZ=Asia/Tokyo" +
           " LANG=C.UTF-8 BUILD_DIR=there " + script);
    EXPECT_EQ(run("cmp " + packageIn(copy + "/here") + " " + packageIn(copy + "/there")).status, 0);
    EXPECT_EQ(
        run("diff -r " + copy + "/here/Quillet.bundle " + copy + "/there/Quillet.bundle").status,
        0);
    fs::remove_all(copy);
}

TEST_F(PreInstallCheck, RefusesADeviceWithoutTheSwitchFrameworkAndSaysWhy) {
    for (const std::string action : {"install", "upgrade 0.9"}) {
        const Outcome outcome = check(action);
        EXPECT_EQ(outcome.status, 1) << action;
        EXPECT_THAT(outcome.text, HasSubstr("there is no /usr/lib/libflipswitch.dylib"));
    }
}

TEST_F(PreInstallCheck, SaysNothingOnADeviceWithTheSwitchFramework) {
    std::ofstream(root_ + "/usr/lib/libflipswitch.dylib") << "a library";
    const Outcome outcome = check("install");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.text, "");
}

TEST_F(PreInstallCheck, LetsAnAbandonedUpgradeBeUndone) {
    EXPECT_EQ(check("abort-upgrade 1.1").status, 0);
}

}  // namespace
}  // namespace quillet::test
