// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "tests/support/program.h"
#include "tests/support/temporary_folder.h"

namespace quillet::test {
namespace {

namespace fs = std::filesystem;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

/// What the scripts of the project have in common, on the command line.
class Scripts : public testing::Test {
protected:
    Outcome run(const std::string& line) {
        return runInShell(line, fs::path{QUILLET_SCRIPTS}.parent_path());
    }

    static Words all() {
        Words scripts;
        for (const auto& file : fs::directory_iterator{QUILLET_SCRIPTS}) {
            const fs::path name = file.path().filename();
            if (!name.has_extension()) scripts.push_back("script/" + name.string());
        }
        return scripts;
    }
};

TEST_F(Scripts, ExplainThemselvesAndTheirColors) {
    for (const std::string& script : all()) {
        if (script == "script/run") continue;  // The host program explains itself.
        const Outcome outcome = run(script + " --color=never --help");
        EXPECT_EQ(outcome.status, 0) << script;
        EXPECT_THAT(outcome.output, Not(StartsWith("#"))) << script;
        EXPECT_THAT(outcome.output, HasSubstr("\n\n--color auto|always|never: ")) << script;
        EXPECT_EQ(outcome.errors, "") << script;
        for (const std::string& line : linesOf(outcome.output)) {
            EXPECT_LE(line.size(), 80U) << script << ": " << line;
        }
    }
}

TEST_F(Scripts, RefuseAnotherColorBeforeTheyDoAnything) {
    for (const std::string& script : all()) {
        for (const std::string word : {"--color=blue", "--color blue", "--color ''"}) {
            const Outcome outcome = run(script + ' ' + word);
            EXPECT_EQ(outcome.status, 1) << script << ' ' << word;
            EXPECT_EQ(outcome.output, "") << script << ' ' << word;
            EXPECT_THAT(outcome.errors, HasSubstr(": neither auto nor always nor never: \""))
                << script << ' ' << word;
        }
    }
}

TEST_F(Scripts, RefuseOptionsThatTheyDoNotKnow) {
    for (const std::string& script : all()) {
        if (script == "script/run") continue;
        const Outcome outcome = run(script + " --colour=never");
        EXPECT_EQ(outcome.status, 1) << script;
        EXPECT_THAT(outcome.errors, EndsWith(": there is no \"--colour=never\"; see --help\n"))
            << script;
    }
}

/// The scripts that run the host program, in a copy of the project in which everything is
/// installed, and in which that program prints its words.
class RunningScripts : public testing::Test {
protected:
    RunningScripts() {
        for (const char* const script : {"run", "demo", "lib.sh"}) {
            const fs::path copy = folder() / "script" / script;
            fs::create_directories(copy.parent_path());
            fs::copy(fs::path{QUILLET_SCRIPTS} / script, copy);
        }
        addProgram("bin/cmake", "exit 0");
        addProgram("bin/dpkg-query", "echo installed");
        addProgram("build/release/springboard", "echo \"$@\"");
    }

    /// Runs a line of a user's, with a terminal for all that it prints where `name` names one.
    Outcome run(const std::string& line, const std::string& name = "") {
        std::string whole = "PATH=" + (folder() / "bin").string() + ":$PATH; unset NO_COLOR; ";
        whole += name.empty() ? line : "TERM=" + name + " script -qec '" + line + "' /dev/null";
        return runInShell(whole, folder());
    }

private:
    fs::path folder() const { return folder_.path(); }
    void addProgram(const fs::path& name, const std::string& line) {
        fs::create_directories((folder() / name).parent_path());
        writeText(folder() / name, "#!/bin/sh\n" + line + '\n');
        fs::permissions(folder() / name, fs::perms::owner_all);
    }

    TemporaryFolder folder_;
};

TEST_F(RunningScripts, HandTheirColorsToTheHostProgram) {
    EXPECT_EQ(run("script/run flip off").output, "--color auto flip off\n");
    EXPECT_EQ(run("script/run --color never flip").output, "--color never flip\n");
    EXPECT_EQ(run("script/run flip --color=always off").output, "--color always flip off\n");
    EXPECT_EQ(run("script/run flip -- --color=always").output,
              "--color auto flip -- --color=always\n");
    EXPECT_THAT(run("script/demo --color=always").output, StartsWith("--color always --root "));
    EXPECT_THAT(run("script/run --color=never").output, StartsWith("--color never --root "))
        << "shows what a flip does";
}

TEST_F(RunningScripts, HaveColorsWhereTheUserWantsThem) {
    constexpr char bold[] = "\033[1mspringboard flip --explain off\033[m";
    EXPECT_THAT(run("script/demo", "xterm").output, HasSubstr(bold));
    EXPECT_THAT(run("script/demo --color=always").errors, HasSubstr(bold));
    EXPECT_THAT(run("NO_COLOR=1 script/demo --color=always", "dumb").output, HasSubstr(bold));
    EXPECT_THAT(run("script/demo").errors, Not(HasSubstr("\033")));
    EXPECT_THAT(run("script/demo", "dumb").output, Not(HasSubstr("\033")));
    EXPECT_THAT(run("NO_COLOR=1 script/demo", "xterm").output, Not(HasSubstr("\033")));
    EXPECT_THAT(run("script/demo --color=never", "xterm").output, Not(HasSubstr("\033")));
}

}  // namespace
}  // namespace quillet::test
