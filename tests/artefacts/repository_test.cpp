// SPDX-License-Identifier: MIT
//
// The source for package managers, as apt takes it and as a browser would ask for its files.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "tests/artefacts/built.h"
#include "tests/artefacts/device_package.h"

namespace quillet::test {
namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::UnorderedElementsAre;

namespace fs = std::filesystem;

std::string textIn(const std::string& file) { return textOf("cat " + repository() + "/" + file); }

/// An apt of its own for devices of one architecture, whose only source is the repository.
class Apt : public testing::TestWithParam<DevicePackage> {
protected:
    Apt() {
        fs::remove_all(root_);
        for (const char* const folder :
             {"etc/apt/sources.list.d", "etc/apt/preferences.d", "etc/apt/apt.conf.d",
              "var/lib/apt/lists/partial", "var/cache/apt/archives/partial", "got"}) {
            fs::create_directories(root_ + "/" + folder);
        }
        std::ofstream(root_ + "/status");
        configure(repository());
    }
    ~Apt() override { fs::remove_all(root_); }

    /// Says to apt where everything is, so that it reads nothing of this machine's own.
    void configure(const std::string& source) const {
        const std::string& architecture = GetParam().architecture;
        std::ofstream(root_ + "/apt.conf")
            << "Dir \"" << root_ << "\"; Dir::State::status \"" << root_ << "/status\";\n"
            << "APT::Architecture \"" << architecture << "\"; APT::Architectures { \""
            << architecture << "\"; }; APT::Sandbox::User \"\"; Acquire::Languages \"none\";\n";
        std::ofstream(root_ + "/etc/apt/sources.list")
            << "deb [trusted=yes] file:" << source << " ./\n";
    }

    Outcome apt(const std::string& command) const {
        return run("cd " + root_ + "/got && APT_CONFIG=" + root_ + "/apt.conf apt-" + command +
                   " 2>&1");
    }

    const std::string root_ = QUILLET_PACKAGES "/apt";
};

INSTANTIATE_TEST_SUITE_P(Built, Apt, testing::ValuesIn(devicePackages),
                         [](const auto& instance) { return instance.param.name; });

TEST_P(Apt, DownloadsThePackageOfItsArchitecture) {
    const Outcome update = apt("get update");
    EXPECT_EQ(update.status, 0);
    EXPECT_THAT(linesWith(update.output, "W:"), IsEmpty());
    EXPECT_EQ(apt("get download com.velk.switch.ringer").status, 0);
    EXPECT_EQ(run("cmp " + packageIn(root_ + "/got", GetParam().architecture) + " " +
                  packageIn(repository(), GetParam().architecture))
                  .status,
              0);
}

TEST_P(Apt, ShowsWhereTheIconAndThePageAre) {
    apt("get update");
    const std::string shown = apt("cache show com.velk.switch.ringer").output;
    EXPECT_THAT(shown, HasSubstr("\nArchitecture: " + GetParam().architecture + "\n"));
    EXPECT_THAT(shown, HasSubstr("\nIcon: https://example.org/switches/icon.png\n"));
    EXPECT_THAT(shown, HasSubstr("\nDepiction: https://example.org/switches/depiction.html\n"));
}

TEST_P(Apt, RefusesAnIndexThatIsNotTheReleases) {
    const std::string altered = root_ + "/altered";
    textOf("cp -R " + repository() + " " + altered);
    textOf("cd " + altered +
           " && rm Packages.gz Packages.xz && sed -i s/Quillet/Billets/ Packages");
    configure(altered);
    const Outcome update = apt("get update");
    EXPECT_NE(update.status, 0);
    EXPECT_THAT(update.output, HasSubstr("Failed to fetch"));
}

TEST(Repository, HoldsThePackagesTheirIndexAndAPageWithItsIcon) {
    Words files;
    for (const auto& entry : fs::directory_iterator(repository())) {
        files.push_back(entry.path().filename());
    }
    EXPECT_THAT(
        files, UnorderedElementsAre("Packages", "Packages.gz", "Packages.xz", "Release",
                                    "com.velk.switch.ringer_" QUILLET_VERSION "_iphoneos-arm.deb",
                                    "com.velk.switch.ringer_" QUILLET_VERSION "_iphoneos-arm64.deb",
                                    "depiction.html", "icon.png", "CydiaIcon.png"));
}

TEST(Repository, HasTheSameIndexInEachForm) {
    EXPECT_EQ(textOf("zcat " + repository() + "/Packages.gz"), textIn("Packages"));
    EXPECT_EQ(textOf("xzcat " + repository() + "/Packages.xz"), textIn("Packages"));
}

TEST(Repository, NamesEachFormOfTheIndexWithEachOfItsSums) {
    const std::string release = textIn("Release");
    for (const std::string index : {"Packages", "Packages.gz", "Packages.xz"}) {
        const std::string path = repository() + "/" + index;
        const std::string size = std::to_string(fs::file_size(path));
        for (const std::string tool : {"md5sum", "sha1sum", "sha256sum"}) {
            const std::string sum = column(textOf(tool + " " + path), 0).at(0);
            EXPECT_THAT(release, HasSubstr("\n " + sum + " " + size + " " + index + "\n"));
        }
    }
}

TEST(Repository, HasAPageThatIsCompleteAndFollowsTheReadersColours) {
    const std::string page = textIn("depiction.html");
    EXPECT_THAT(page, HasSubstr("version " QUILLET_VERSION));
    EXPECT_THAT(page, HasSubstr("<h3>" QUILLET_VERSION "</h3>"));
    EXPECT_THAT(page, HasSubstr("prefers-color-scheme: dark"));
    for (const std::string key :
         {"ios-vibrate-pattern", "vibrate-when-off", "vibrate-when-on", "ringtone-volume"}) {
        EXPECT_THAT(page, HasSubstr("<td><code>" + key + "</code>"));
    }
    EXPECT_THAT(page, Not(testing::ContainsRegex("@[A-Z]|`")));
}

TEST(Repository, HasASquareIcon) {
    // The width and the height stand behind the name of a PNG file's first part, big-endian.
    EXPECT_EQ(textOf("od -An -v -tx1 -j 12 -N 12 " + repository() + "/icon.png"),
              " 49 48 44 52 00 00 00 78 00 00 00 78\n");
    EXPECT_EQ(textIn("CydiaIcon.png"), textIn("icon.png"));
}

}  // namespace
}  // namespace quillet::test
