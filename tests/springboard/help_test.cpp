// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>

#include <regex>
#include <string>

#include "tests/springboard/springboard.h"

namespace quillet::test {
namespace {

using namespace std::string_literals;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

const Words commands = {"state",    "flip",  "apply", "watch",   "status",    "log",
                        "new",      "model", "host",  "erase",   "prefs",     "trace",
                        "timeline", "plist", "help",  "version", "completion"};

class Help : public SpringBoard {
protected:
    /// What a command line that must succeed prints.
    std::string printed(const Words& words) {
        const Outcome outcome = run(words);
        EXPECT_EQ(outcome.status, 0) << testing::PrintToString(words);
        EXPECT_EQ(outcome.errors, "") << testing::PrintToString(words);
        return outcome.output;
    }
};

TEST_F(Help, NamesEveryCommandAndOption) {
    const std::string help = printed({"--help"});
    EXPECT_THAT(help, StartsWith("Usage: springboard"));
    for (const char* const word :
         {"state", "flip [on|off]", "apply N", "watch", "help [COMMAND]", "version", "--root DIR",
          "--bundle DIR", "--machine NAME", "--host VARIANT", "--trace[=FILE]",
          "--trace-format FORMAT", "--json", "--color WHEN", "--version", "-h, --help"}) {
        EXPECT_THAT(help, HasSubstr(word));
    }
}

TEST_F(Help, ExplainsEveryWordOfAHostVariant) {
    const std::string help = printed({"help", "host"});
    for (const std::string word : {"class", "instance", "no-instance", "deaf", "absent"}) {
        EXPECT_THAT(help, HasSubstr("\n  " + word + "  ")) << word;
    }
}

TEST_F(Help, IsTheSameHoweverItIsAskedFor) {
    const std::string help = printed({"--help"});
    EXPECT_EQ(printed({"-h"}), help);
    EXPECT_EQ(printed({"help"}), help);
    EXPECT_EQ(printed({"--hel"}), help);
    EXPECT_EQ(printed({"--json", "--help", "flip", "--nothing"}), help);
}

TEST_F(Help, OfACommandIsTheSameHoweverItIsAskedFor) {
    for (const std::string& command : commands) {
        const std::string help = printed({"help", command});
        EXPECT_THAT(help, StartsWith("Usage: springboard [OPTION]... " + command));
        EXPECT_THAT(help, Not(HasSubstr("\n  state "))) << "is of that command alone";
        EXPECT_EQ(printed({command, "--help"}), help);
        EXPECT_EQ(printed({command, "-h"}), help);
    }
}

TEST_F(Help, OfApplySaysWhatTheNumbersMean) {
    const std::string help = printed({"help", "apply"});
    for (const char* const word : {"\n  0 ", "\n  1 ", "\n  -1 ", "\n  any other "}) {
        EXPECT_THAT(help, HasSubstr(word));
    }
}

TEST_F(Help, TellsWhetherACommandThatHasCommandsNeedsOne) {
    const std::string help = printed({"help"});
    for (const char* const command : {"trace COMMAND", "plist COMMAND", "prefs [COMMAND"}) {
        EXPECT_THAT(help, HasSubstr("\n  "s + command));
        const std::string own = printed({"help", std::string{command}.substr(0, 5)});
        EXPECT_THAT(own, StartsWith("Usage: springboard [OPTION]... "s + command + " [WORD]..."));
    }
}

TEST_F(Help, FitsInto80Columns) {
    Words topics = commands;
    topics.emplace_back("--json");
    for (const std::string& topic : topics) {
        for (const std::string& line : linesOf(printed({topic, "--help"}))) {
            EXPECT_LE(line.size(), 80U) << topic << ": " << line;
            EXPECT_FALSE(line.ends_with(' ')) << topic << ": " << line;
        }
    }
}

TEST_F(Help, HasBoldHeadingsOnRequestAndNoneInAFile) {
    const std::string heading = "\033[1mExamples:\033[m\n";
    EXPECT_THAT(printed({"--color=always", "--help"}), HasSubstr(heading));
    EXPECT_THAT(printed({"--help"}), Not(HasSubstr("\033")));
    EXPECT_THAT(run({"--color", "always"}).errors, HasSubstr(heading));
}

TEST_F(Help, NamesWhatTheManualPageNames) {
    const std::string page = readText(QUILLET_MANUAL);
    const std::string help = printed({"--help"});
    for (const std::string& command : commands) {
        EXPECT_THAT(page, HasSubstr("\n.It Cm " + command)) << command;
    }
    const std::regex option{"\n  (?:-[a-z], )?--([a-z-]+)"};
    for (std::sregex_iterator found{help.begin(), help.end(), option}, end; found != end; ++found) {
        const std::string name = (*found)[1];
        EXPECT_THAT(page, HasSubstr("Fl -" + name)) << name;
    }
}

}  // namespace
}  // namespace quillet::test
