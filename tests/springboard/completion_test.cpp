// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>

#include <filesystem>
#include <string>

#include "tests/springboard/springboard.h"

namespace quillet::test {
namespace {

namespace fs = std::filesystem;
using ::testing::AllOf;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsSubsetOf;
using ::testing::Not;

class Completion : public SpringBoard {
protected:
    /// Printed when it is first asked for.
    fs::path scriptFor(const std::string& shell, const std::string& program = "springboard") {
        const fs::path script = folder() / (program + '.' + shell);
        if (fs::exists(script)) return script;
        const bool isHost = program == "springboard";
        const int status = waitFor(start(isHost ? QUILLET_SPRINGBOARD : QUILLET_NOTIFYUTIL,
                                         {.words = {isHost ? "completion" : "--completion", shell},
                                          .output = script,
                                          .errors = folder() / "completion.errors"}));
        EXPECT_EQ(status, 0) << program << ' ' << shell;
        return script;
    }

    /// What bash offers at the end of the line that these words are, the last of them begun.
    Words offered(const Words& words, const std::string& program = "springboard") {
        std::string line =
            "source " + scriptFor("bash", program).string() + "; COMP_WORDS=(" + program;
        for (const std::string& word : words) line += " '" + word + "'";
        line += "); COMP_CWORD=" + std::to_string(words.size()) + "; _" + program +
                "; printf \"%s\\n\" \"${COMPREPLY[@]}\"";
        writeText(folder() / "line", line);
        const Outcome outcome = runInShell("bash line", folder());
        EXPECT_EQ(outcome.errors, "") << testing::PrintToString(words);
        return linesOf(outcome.output);
    }

    bool isInstalled(const std::string& program) {
        return runInShell("command -v " + program).status == 0;
    }
};

TEST_F(Completion, OffersTheCommands) {
    EXPECT_THAT(offered({""}), AllOf(Contains("state"), Contains("flip"), Contains("prefs"),
                                     Contains("completion"), Not(Contains("--root"))));
    EXPECT_THAT(offered({"fl"}), ElementsAre("flip"));
    EXPECT_THAT(offered({"prefs", ""}), ElementsAre("read", "set", "unset", "import", "export"));
    EXPECT_THAT(offered({"--json", "--root", "flip", "st"}), Contains("state"))
        << "the name of a command may be an option's argument";
}

TEST_F(Completion, OffersTheWordsOfACommand) {
    EXPECT_THAT(offered({"flip", ""}), ElementsAre("on", "off"));
    EXPECT_THAT(offered({"flip", "--json", "of"}), ElementsAre("off"));
    EXPECT_THAT(offered({"flip", "on", ""}), ElementsAre(""));
    EXPECT_THAT(offered({"prefs", "set", "vibrate-"}),
                ElementsAre("vibrate-when-off", "vibrate-when-on"));
    EXPECT_THAT(offered({"completion", ""}), ElementsAre("bash", "zsh", "fish"));
    EXPECT_THAT(offered({"help", "fl"}), ElementsAre("flip"));
}

TEST_F(Completion, OffersTheOptionsWhereverTheyMayStand) {
    const Words some = {"--root", "--trace", "--json", "--color", "--help", "-h"};
    for (const Words& words : {Words{"-"}, Words{"flip", "-"}, Words{"flip", "on", "-"}}) {
        EXPECT_THAT(some, IsSubsetOf(offered(words)));
    }
    EXPECT_THAT(offered({"--col"}), ElementsAre("--color"));
}

TEST_F(Completion, OffersTheArgumentsOfAnOption) {
    const Words when = {"auto", "always", "never"};
    EXPECT_EQ(offered({"--color", ""}), when);
    EXPECT_EQ(offered({"flip", "--color", "="}), when);
    EXPECT_THAT(offered({"--color", "=", "al"}), ElementsAre("always"));
    EXPECT_THAT(offered({"--trace", "fl"}), ElementsAre("flip")) << "has no argument behind it";
}

TEST_F(Completion, OffersFilesAndFolders) {
    fs::create_directory(folder() / "a folder");
    writeText(folder() / "a file", "");
    EXPECT_THAT(offered({"--root", "a"}), ElementsAre("a folder"));
    EXPECT_THAT(offered({"--trace", "=", "a f"}),
                testing::UnorderedElementsAre("a folder", "a file"));
    for (Words words :
         {Words{"prefs", "import"}, Words{"trace", "diff"}, Words{"trace", "diff", "A"},
          Words{"timeline"}, Words{"timeline", "--svg"}}) {
        words.emplace_back("a fi");
        EXPECT_THAT(offered(words), ElementsAre("a file")) << testing::PrintToString(words);
    }
}

TEST_F(Completion, OffersNoWordThatTheProgramRefuses) {
    for (const std::string& word : offered({"--color", ""})) {
        EXPECT_EQ(run({"--color", word, "state"}).status, 0) << word;
    }
    for (const std::string& word : offered({"--trace-format", ""})) {
        EXPECT_EQ(run({"--trace", "--trace-format", word, "state"}).status, 0) << word;
    }
    for (const std::string& word : offered({""})) {
        EXPECT_EQ(run({"help", word}).status, 0) << word;
    }
}

TEST_F(Completion, IsTheSameForZsh) {
    const fs::path script = scriptFor("zsh");
    EXPECT_THAT(readText(script),
                AllOf(HasSubstr("#compdef springboard\n"), HasSubstr("'flip:turn the switch"),
                      HasSubstr("'1:on|off:(on off)'"), HasSubstr(":DIR:_files -/'"),
                      HasSubstr("WHEN:(auto always never)'")));
    if (!isInstalled("zsh")) return;
    EXPECT_EQ(runInShell("zsh -n " + script.string()).errors, "");
}

TEST_F(Completion, IsTheSameForFish) {
    const fs::path script = scriptFor("fish");
    EXPECT_THAT(
        readText(script),
        AllOf(HasSubstr(" -a flip -d 'turn the switch"),
              HasSubstr(" -n '__fish_seen_subcommand_from flip' -a 'on off'\n"),
              HasSubstr(" -l root -x -a '(__fish_complete_directories)'"),
              HasSubstr(" -n '__fish_seen_subcommand_from prefs; and not "
                        "__fish_seen_subcommand_from read set unset import export' -a read")));
    if (!isInstalled("fish")) return;
    EXPECT_EQ(runInShell("fish -n " + script.string()).errors, "");
}

TEST_F(Completion, IsThereForNotifyutilToo) {
    const std::string program = "notifyutil";
    const std::string name = "com.apple.springboard.ringerstate";
    EXPECT_THAT(offered({"-"}, program), AllOf(Contains("-p"), Contains("-1"), Contains("--root")));
    for (const char* const option : {"-p", "-g", "-s", "-w", "-1"}) {
        EXPECT_THAT(offered({"-v", option, "com.ap"}, program), ElementsAre(name)) << option;
    }
    EXPECT_THAT(offered({"-p", name, "--color", "n"}, program), ElementsAre("never"));
    EXPECT_THAT(offered({"-z", ""}, program), ElementsAre(""));
    fs::create_directory(folder() / "a folder");
    EXPECT_THAT(offered({"--root", "a"}, program), ElementsAre("a folder"));
    EXPECT_THAT(
        readText(scriptFor("zsh", program)),
        AllOf(HasSubstr("#compdef notifyutil\n"),
              HasSubstr(" '*-p[post NAME]:NAME:(" + name + ")'"),
              HasSubstr(" '-q[print nothing but what -g prints]'"),
              HasSubstr(" '--color=[auto (default), always or never]:WHEN:(auto always never)'")));
    EXPECT_THAT(readText(scriptFor("fish", program)),
                HasSubstr("complete -c notifyutil -s p -x -a '" + name + "' -d 'post NAME'\n"));
    for (const std::string shell : {"zsh", "fish"}) {
        if (!isInstalled(shell)) continue;
        EXPECT_EQ(runInShell(shell + " -n " + scriptFor(shell, program).string()).errors, "");
    }
}

TEST_F(Completion, IsForThreeShells) {
    expectFailure(run({"completion", "sh"}), 2, "neither bash nor zsh nor fish: \"sh\"");
    expectFailure(run({"completion"}), 2, "completion needs a shell");
}

}  // namespace
}  // namespace quillet::test
