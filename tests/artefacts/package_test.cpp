// SPDX-License-Identifier: MIT
//
// The packages for devices, as dpkg reads them.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "tests/artefacts/built.h"
#include "tests/artefacts/device_package.h"

namespace quillet::test {
namespace {

using ::testing::Contains;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

namespace fs = std::filesystem;

class Package : public testing::TestWithParam<DevicePackage> {
protected:
    static std::string package() { return packageIn(packages(), GetParam().architecture); }

    static std::string field(const std::string& name) {
        return textOf("dpkg-deb --field " + package() + " " + name);
    }

    static std::string bundle() {
        return "." + GetParam().prefix + "/Library/Switches/Quillet.bundle/";
    }

    static std::string contentOf(const std::string& file) {
        return "dpkg-deb --fsys-tarfile " + package() + " | tar --extract --to-stdout " + file;
    }
};

INSTANTIATE_TEST_SUITE_P(Built, Package, testing::ValuesIn(devicePackages),
                         [](const auto& instance) { return instance.param.name; });

TEST_P(Package, IsNamedAfterTheBundleAndMeantForItsSystems) {
    EXPECT_EQ(field("Package"), "com.velk.switch.ringer\n");
    EXPECT_EQ(field("Architecture"), GetParam().architecture + "\n");
    EXPECT_EQ(field("Depends"), "firmware (>= " + GetParam().firmware + ")\n");
    EXPECT_EQ(field("Version"), QUILLET_VERSION "\n");
}

TEST_P(Package, HoldsAPropertyListWithItsNameAndVersion) {
    const std::string properties = textOf(contentOf(bundle() + "Info.plist"));
    EXPECT_THAT(properties, HasSubstr("<string>com.velk.switch.ringer</string>"));
    EXPECT_THAT(linesWith(properties, "<string>" QUILLET_VERSION "</string>"), testing::SizeIs(2));
}

TEST_P(Package, NamesNoSourceUnlessItIsMadeForOne) {
    EXPECT_THAT(textOf("dpkg-deb --field " + package()), Not(HasSubstr("://")));
}

TEST_P(Package, IsMadeOfGzipMembersThatOldInstallersRead) {
    EXPECT_THAT(column(textOf("ar t " + package()), 0),
                ElementsAre("debian-binary", "control.tar.gz", "data.tar.gz"));
    EXPECT_EQ(textOf("ar p " + package() + " data.tar.gz | od -An -N2 -tx1"), " 1f 8b\n");
}

TEST_P(Package, HoldsTheBundleAndNothingElse) {
    Words expected = {bundle(), bundle() + "Quillet"};
    for (std::string folder = bundle(); folder != "./";) {
        folder.erase(folder.rfind('/', folder.size() - 2) + 1);
        expected.push_back(folder);
    }
    const fs::path source = QUILLET_ROOT "/resources";
    for (const auto& entry : fs::recursive_directory_iterator(source)) {
        expected.push_back(bundle() + fs::relative(entry.path(), source).string() +
                           (entry.is_directory() ? "/" : ""));
    }
    EXPECT_THAT(column(textOf("dpkg-deb --contents " + package()), 5),
                testing::UnorderedElementsAreArray(expected));
}

TEST_P(Package, GivesEveryFileToRootAndOnlyTheModuleTheRightToBeRun) {
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

TEST_P(Package, HoldsTheModuleForItsSystems) {
    const std::string module = builtModule(GetParam().module);
    EXPECT_EQ(run(contentOf(bundle() + "Quillet") + " | cmp - " + module).status, 0);
}

class PackagedModule : public testing::Test {
protected:
    static std::string commands(const std::string& module) {
        return textOf("llvm-objdump-14 --macho --private-headers " + builtModule(module));
    }

    static Words switchFramework(const std::string& module) {
        return column(textOf("llvm-objdump-14 --macho --dylibs-used " + builtModule(module)), 0);
    }
};

TEST_F(PackagedModule, RunsOn32BitAnd64BitDevicesWhereFilesHaveTheirOldPlace) {
    EXPECT_EQ(textOf("llvm-lipo-14 -archs " + builtModule("device")), "armv7 arm64 \n");
}

TEST_F(PackagedModule, FindsTheSwitchFrameworkInItsOldPlace) {
    EXPECT_THAT(switchFramework("device"), Contains("/usr/lib/libflipswitch.dylib"));
    EXPECT_THAT(commands("arm64"), Not(HasSubstr("LC_RPATH")));
}

TEST_F(PackagedModule, Runs64BitOnRootlessSystems) {
    EXPECT_EQ(textOf("llvm-lipo-14 -archs " + builtModule("rootless")), "arm64 \n");
}

TEST_F(PackagedModule, FindsTheSwitchFrameworkAlongItsRunPathsOnRootlessSystems) {
    EXPECT_THAT(switchFramework("rootless"), Contains("@rpath/libflipswitch.dylib"));
    EXPECT_THAT(switchFramework("rootless"), Not(Contains(HasSubstr("/usr/lib/libflipswitch"))));
    EXPECT_THAT(linesWith(commands("rootless"), "path /"),
                ElementsAre("path /usr/lib (offset 12)", "path /var/jb/usr/lib (offset 12)"));
}

TEST_F(PackagedModule, DiffersForRootlessSystemsInNothingButTheSwitchFrameworksPlace) {
    const auto others = [](Words libraries) {
        std::erase_if(libraries, [](const std::string& library) {
            return library.find("libflipswitch") != std::string::npos || library.ends_with(":");
        });
        return libraries;
    };
    EXPECT_EQ(others(switchFramework("rootless")), others(switchFramework("arm64")));
    const auto code = [](const std::string& module) {
        const std::string text =
            textOf("llvm-objdump-14 --disassemble --no-show-raw-insn " + builtModule(module));
        return text.substr(text.find("Disassembly"));
    };
    EXPECT_EQ(code("rootless"), code("arm64"));
}

}  // namespace
}  // namespace quillet::test
