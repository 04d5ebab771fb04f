// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <filesystem>
#include <regex>
#include <string>
#include <utility>

#include "tests/springboard/springboard.h"

namespace quillet::test {
namespace {

namespace fs = std::filesystem;

/// The host program as `cmake --install` puts it below a prefix.
class Installed : public SpringBoard {
protected:
    Installed() {
        EXPECT_EQ(runProgram(QUILLET_CMAKE, {"--install", QUILLET_BUILD, "--prefix", prefix()}), 0)
            << printed();
    }

    fs::path prefix() const { return folder() / "prefix"; }
    /// What the last program wrote.
    std::string printed() const { return readText(folder() / "printed"); }
    int runProgram(const fs::path& program, const Words& words) const {
        return waitFor(
            start(program,
                  {.words = words, .output = folder() / "printed", .errors = folder() / "errors"}));
    }
};

TEST_F(Installed, ItIsACommandThatFindsTheBundle) {
    EXPECT_EQ(runProgram(prefix() / "bin" / "springboard", {"--root", root(), "flip", "off"}), 0);
    EXPECT_EQ(printed(), "off\n");
}

TEST_F(Installed, ItMayBeMovedAsAWhole) {
    const fs::path elsewhere = folder() / "elsewhere";
    fs::rename(prefix(), elsewhere);
    EXPECT_EQ(runProgram(elsewhere / "bin" / "springboard", {"--root", root(), "state"}), 0);
    EXPECT_EQ(printed(), "on\n");
}

TEST_F(Installed, BesideItIsTheProgramForNotifications) {
    EXPECT_EQ(runProgram(prefix() / "bin" / "notifyutil", {"--root", root(), "-g", "a"}), 0);
    EXPECT_EQ(printed(), "a 0\n");
}

TEST_F(Installed, ShellsFindWhatCompletesItsCommandLines) {
    const std::pair<const char*, const char*> scripts[] = {
        {"bash", "bash-completion/completions/springboard"},
        {"zsh", "zsh/site-functions/_springboard"},
        {"zsh", "zsh/vendor-completions/_springboard"},
        {"fish", "fish/vendor_completions.d/springboard.fish"}};
    for (const auto& [shell, script] : scripts) {
        EXPECT_EQ(readText(prefix() / "share" / script), run({"completion", shell}).output);
        const std::string other =
            std::regex_replace(script, std::regex{"springboard"}, "notifyutil");
        EXPECT_EQ(runProgram(QUILLET_NOTIFYUTIL, {"--completion", shell}), 0);
        EXPECT_EQ(readText(prefix() / "share" / other), printed()) << other;
    }
}

TEST_F(Installed, TheManualsAreWhereManualsAre) {
    const fs::path manuals = prefix() / "share" / "man" / "man1";
    EXPECT_EQ(readText(manuals / "springboard.1"), readText(QUILLET_MANUAL));
    EXPECT_EQ(readText(manuals / "notifyutil.1"), readText(QUILLET_NOTIFYUTIL_MANUAL));
}

}  // namespace
}  // namespace quillet::test
