// SPDX-License-Identifier: MIT
//
// The script that each package runs before it is installed, on a root folder of ours and with no
// command but a `uname` of ours.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "tests/artefacts/built.h"
#include "tests/artefacts/device_package.h"

namespace quillet::test {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;

namespace fs = std::filesystem;

/// A device with everything that the switch needs, of which each test takes or changes something.
class PreInstallCheck : public testing::TestWithParam<DevicePackage> {
protected:
    PreInstallCheck() {
        fs::remove_all(folder_);
        write(root_ + library_, "a library");
        setSystem("16.5.1");
        setModel("iPhone10,3");
        textOf("dpkg-deb --control " + packageIn(packages(), GetParam().architecture) + " " +
               folder_ + "/control");
    }
    ~PreInstallCheck() override { fs::remove_all(folder_); }

    static void write(const fs::path& file, const std::string& text) {
        fs::create_directories(file.parent_path());
        std::ofstream(file) << text;
    }

    void setSystem(const std::string& version) const {
        write(propertyList_,
              "<plist version=\"1.0\">\n<dict>\n\t<key>ProductName</key>\n"
              "\t<string>iPhone OS</string>\n\t<key>ProductVersion</key>\n\t<string>" +
                  version + "</string>\n</dict>\n</plist>\n");
    }

    void setModel(const std::string& model) const {
        write(uname_, "#!/bin/sh\n[ \"$*\" = -m ] && echo " + model + "\n");
        fs::permissions(uname_, fs::perms::owner_all);
    }

    /// What the script says and answers, run by a shell that knows little beyond POSIX.
    Outcome check(const std::string& action = "install") const {
        return run("env -i PATH=" + folder_ + "/bin DPKG_ROOT=" + root_ + " /bin/dash " + folder_ +
                   "/control/preinst " + action + " 2>&1");
    }

    void expectInstalled(const std::string& on) const {
        const Outcome outcome = check();
        EXPECT_EQ(outcome.status, 0) << on;
        EXPECT_EQ(outcome.output, "") << on;
    }

    const std::string folder_ = QUILLET_PACKAGES "/pre_install";
    const std::string root_ = folder_ + "/root";
    const std::string library_ = GetParam().prefix + "/usr/lib/libflipswitch.dylib";
    const std::string propertyList_ = root_ + "/System/Library/CoreServices/SystemVersion.plist";
    const std::string uname_ = folder_ + "/bin/uname";
};

INSTANTIATE_TEST_SUITE_P(Built, PreInstallCheck, testing::ValuesIn(devicePackages),
                         [](const auto& instance) { return instance.param.name; });

TEST_P(PreInstallCheck, IsRunByTheShellThatItsSystemsHave) {
    EXPECT_EQ(textOf("head -n 1 " + folder_ + "/control/preinst"),
              "#!" + GetParam().prefix + "/bin/sh\n");
}

TEST_P(PreInstallCheck, SaysNothingOnADeviceThatHasAll) { expectInstalled("a device"); }

TEST_P(PreInstallCheck, RefusesADeviceWithoutTheSwitchFramework) {
    fs::remove(root_ + library_);
    for (const std::string action : {"install", "upgrade 0.9"}) {
        const Outcome outcome = check(action);
        EXPECT_EQ(outcome.status, 1) << action;
        EXPECT_THAT(outcome.output, HasSubstr("there is no " + library_ + ". Install"));
    }
}

TEST_P(PreInstallCheck, RefusesASystemThatIsTooOld) {
    const bool rootless = !GetParam().prefix.empty();
    const std::string first = rootless ? "15" : "7";
    for (const std::string& version :
         {std::string("5.1.1"), std::string("6.1.6"), std::string(rootless ? "14.8.1" : "6.0")}) {
        setSystem(version);
        const Outcome outcome = check();
        EXPECT_EQ(outcome.status, 1) << version;
        EXPECT_THAT(outcome.output, AllOf(HasSubstr("system " + first + " or later"),
                                          HasSubstr("this is " + version + ".")));
    }
}

TEST_P(PreInstallCheck, TakesTheFirstSystemAndAllLaterOnes) {
    for (const std::string& version :
         {GetParam().firmware, std::string("15.8"), std::string("16.7.10"), std::string("17")}) {
        setSystem(version);
        expectInstalled(version);
    }
}

TEST_P(PreInstallCheck, RefusesModelsWhoseHomeScreenRunsAsArm64e) {
    for (const std::string model :
         {"iPhone11,2", "iPhone12,8", "iPhone17,1", "iPad8,1", "iPad11,6", "iPad14,3"}) {
        setModel(model);
        const Outcome outcome = check();
        EXPECT_EQ(outcome.status, 1) << model;
        EXPECT_THAT(outcome.output, AllOf(HasSubstr(model), HasSubstr("arm64e")));
    }
}

TEST_P(PreInstallCheck, TakesAllEarlierModels) {
    for (const std::string model : {"iPhone3,1", "iPhone5,4", "iPhone10,6", "iPad2,1", "iPad4,4",
                                    "iPad7,12", "iPod5,1", "iPod9,1"}) {
        setModel(model);
        expectInstalled(model);
    }
}

TEST_P(PreInstallCheck, InstallsWhereTheModelCannotBeFoundOut) {
    for (const std::string model : {"''", "arm64", "iPhone", "iPhone,1", "iPhoneX,1", "Watch4,1"}) {
        setModel(model);
        expectInstalled(model);
    }
    fs::remove(uname_);
    expectInstalled("no uname");
}

TEST_P(PreInstallCheck, InstallsWhereTheSystemCannotBeFoundOut) {
    for (const std::string version : {"", "soon", "-6.1"}) {
        setSystem(version);
        expectInstalled(version);
    }
    write(propertyList_, "bplist00\xd1 6.1.6");
    expectInstalled("a binary property list");
    write(propertyList_, "<key>ProductName</key>\n<string>6.1.6</string>\n");
    expectInstalled("no version");
    fs::remove(propertyList_);
    expectInstalled("no property list");
}

TEST_P(PreInstallCheck, ReadsAVersionOnTheLineOfItsKeyToo) {
    for (const std::string end : {"\n", ""}) {
        write(propertyList_, "<dict><key>ProductVersion</key><string>6.1</string></dict>" + end);
        EXPECT_EQ(check().status, 1) << testing::PrintToString(end);
    }
}

TEST_P(PreInstallCheck, LetsAnAbandonedUpgradeBeUndone) {
    fs::remove(root_ + library_);
    EXPECT_EQ(check("abort-upgrade 1.1").status, 0);
}

}  // namespace
}  // namespace quillet::test
