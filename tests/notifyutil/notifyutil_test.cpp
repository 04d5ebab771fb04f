// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <signal.h>

#include <filesystem>
#include <regex>
#include <string>

#include "tests/notifyutil/notifyutil.h"

namespace quillet::test {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::MatchesRegex;

const std::string tooLongName(240, 'n');

TEST_F(NotifyUtil, PrintsTheStateOfANameAndSetsIt) {
    expectPrinted({"-g", ringerStateName}, std::string{ringerStateName} + " 1\n");
    expectPrinted({"-g", "a.name", "-s", "a.name", "7", "-g", "a.name"}, "a.name 0\na.name 7\n");
    expectPrinted({"-s", "a.name", "18446744073709551615"}, "");
    expectPrinted({"-g", "a.name"}, "a.name 18446744073709551615\n");
}

TEST_F(NotifyUtil, SeesWhatOthersDoAndIsSeenByThem) {
    expectOutput({"flip", "off"}, "off\n");
    expectPrinted({"-g", ringerStateName}, std::string{ringerStateName} + " 0\n");
    expectPrinted({"-s", ringerStateName, "1"}, "");
    expectOutput({"state"}, "on\n");
}

TEST_F(NotifyUtil, TellsTheJournalWhatItDoes) {
    expectPrinted({"-s", "a.name", "5", "-p", "a.name"}, "");
    const std::string log = run({"log"}).output;
    EXPECT_THAT(log, HasSubstr("started: -s a.name 5 -p a.name\n"));
    EXPECT_THAT(log, HasSubstr("word of a.name: 5\n"));
    EXPECT_THAT(log, HasSubstr("posted a.name\n"));
}

TEST_F(NotifyUtil, ReportsAsManyPostsAsItWaitsForAndEnds) {
    expectPrinted({"-z", "0", "-2", "a", "-p", "a", "-p", "a"}, "a\na\n");
    expectPrinted({"-z", "0", "-1", "a", "-2", "b", "-p", "a", "-p", "a", "-p", "b", "-p", "b"},
                  "a\nb\nb\n");
    expectPrinted({"-z", "0", "-p", "a", "-1", "a", "-g", "a", "-p", "a"}, "a 0\na\n");
}

TEST_F(NotifyUtil, SaysMoreOfAReportOnRequest) {
    const Outcome outcome = notify({"-1", "a", "-s", "a", "5", "-p", "a", "-z", "0", "-v"});
    EXPECT_THAT(outcome.output,
                MatchesRegex("[0-9]{2}:[0-9]{2}:[0-9]{2}[.][0-9]{3} a 5 observer\n"));
}

TEST_F(NotifyUtil, IsSilentOnRequestButForStates) {
    expectPrinted({"-q", "-v", "-z", "0", "-1", "a", "-p", "a", "-g", "a"}, "a 0\n");
    const Outcome outcome = notify({"-g", tooLongName, "-q"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.output + outcome.errors, "");
}

TEST_F(NotifyUtil, TellsAFailureAndGoesOn) {
    for (const char* const option : {"-g", "-w", "-3"}) {
        const Outcome outcome = notify({option, tooLongName, "-g", "a"});
        EXPECT_EQ(outcome.status, 1) << option;
        EXPECT_EQ(outcome.output, "a 0\n") << option;
        EXPECT_EQ(outcome.errors, tooLongName + ": Failed with code 1\n") << option;
    }
}

TEST_F(NotifyUtil, ReportsFlipsToWhoeverWaitsUntilInterrupted) {
    beginToWait({"-w", ringerStateName});
    expectOutput({"flip"}, "off\n");
    EXPECT_THAT(reported(1), ElementsAre(ringerStateName));
    expectOutput({"flip"}, "on\n");
    EXPECT_THAT(reported(2), ElementsAre(ringerStateName, ringerStateName));
    EXPECT_EQ(endWaiting(SIGINT), -SIGINT);
}

TEST_F(NotifyUtil, WatchesTheDeviceWhileItWaits) {
    beginToWait({"-w", "a"});
    EXPECT_THAT(run({"status"}).output, HasSubstr("Watched by   notifyutil["));
    EXPECT_EQ(endWaiting(SIGINT), -SIGINT);
}

TEST_F(NotifyUtil, EndsWhenAnotherProcessHasMadeThePosts) {
    beginToWait({"-2", "a"});
    expectPrinted({"-z", "0", "-p", "a"}, "");
    EXPECT_THAT(reported(1), ElementsAre("a"));
    expectPrinted({"-z", "0", "-p", "b", "-p", "a"}, "");
    EXPECT_EQ(endWaiting(), 0);
    EXPECT_THAT(reported(2), ElementsAre("a", "a"));
}

TEST_F(NotifyUtil, EndsWhenNoPostCanReachItAnyMore) {
    beginToWait({"-w", "a"});
    fs::remove_all(root());
    EXPECT_EQ(endWaiting(), 1);
    EXPECT_THAT(readText(folder() / "errors"),
                HasSubstr("notifyutil: the notification service was removed"));
}

TEST_F(NotifyUtil, RefusesInWordsWhatThisDeviceDoesNotHave) {
    for (const std::string word : {"-port", "-file", "-check", "-signal", "-dispatch"}) {
        expectRefused({word, "-w", "a"},
                      word + " is refused: there is one kind of registration here, that of -w");
    }
    for (const std::string word : {"-M", "-R"}) {
        expectRefused({word}, word +
                                  " is refused: no process serves the names here; they are in "
                                  "a file");
    }
}

TEST_F(NotifyUtil, RefusesWhatMeansNothing) {
    expectRefused({"a"}, "unexpected word: \"a\"");
    expectRefused({"-x"}, "no such option: \"-x\"");
    expectRefused({"-pa"}, "no such option: \"-pa\"");
    expectRefused({"--rot=x"}, "no such option: \"--rot=x\"; did you mean \"--root\"?");
    expectRefused({"--root="}, "--root needs a name");
    expectRefused({"--color=blue"}, "neither auto nor always nor never: \"blue\"");
    expectRefused({"-p"}, "option \"-p\" needs an argument");
    expectRefused({"-p", ""}, "-p needs a name");
    expectRefused({"-s", "a"}, "option \"-s\" needs an argument");
    for (const char* const word : {"", "-1", "x", "1x", "0x1", "18446744073709551616"}) {
        expectRefused({"-s", "a", word}, "no state, a 64-bit number: \"" + std::string{word} + '"');
    }
    for (const char* const word : {"", "-1", "1.5", "4294967296"}) {
        expectRefused({"-z", word}, "no number of milliseconds: \"" + std::string{word} + '"');
    }
    for (const char* const word : {"-0", "-4294967296"}) {
        expectRefused({word, "a"}, "no count of posts: \"" + std::string{word} + '"');
    }
}

TEST_F(NotifyUtil, ChecksAllWordsBeforeItDoesAnything) {
    expectRefused({"-s", ringerStateName, "0", "-p"}, "option \"-p\" needs an argument");
    expectOutput({"state"}, "on\n");
}

TEST_F(NotifyUtil, MakesNoDevice) {
    const fs::path none = folder() / "none";
    const fs::path empty = folder() / "empty";
    fs::create_directory(empty);
    for (const fs::path& root : {none, empty}) {
        const Outcome outcome = notifyBare({.words = {"-g", "a"},
                                            .environment = {"QUILLET_ROOT=" + root.string()},
                                            .output = {},
                                            .errors = {}});
        EXPECT_EQ(outcome.status, 1);
        EXPECT_EQ(outcome.errors,
                  "notifyutil: " + root.string() + ": no device; springboard makes one\n");
    }
    EXPECT_FALSE(fs::exists(none));
    EXPECT_TRUE(fs::is_empty(empty));
}

TEST_F(NotifyUtil, NamesADeviceThatCannotBeUsed) {
    writeText(onDevice("/var/run/notifications"), "broken");
    const Outcome outcome = notify({"-g", "a"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors, HasSubstr("not a table of notifications"));
    fs::remove(onDevice("/var/run/notifications"));
    EXPECT_THAT(notify({"-g", "a"}).errors, HasSubstr("the device has lost"));
}

TEST_F(NotifyUtil, FailsWhenItsLinesCannotBeWritten) {
    const Words states = {"-g", "a"};
    const Words reports = {"-z", "0", "-w", "a", "-p", "a"};
    for (const Words& words : {states, reports, Words{"--help"}, Words{"--version"}}) {
        const Outcome outcome = notify(words, "/dev/full");
        EXPECT_EQ(outcome.status, 1) << testing::PrintToString(words);
        EXPECT_EQ(outcome.errors, "notifyutil: standard output cannot be written\n");
    }
    const std::string before = bytes("/var/run/notifications");
    const Outcome outcome = notifyBare({.words = {"--root", root(), "-g", ringerStateName},
                                        .output = {},
                                        .errors = {},
                                        .closed = 1});
    EXPECT_EQ(outcome.status, 1) << "standard output is closed";
    EXPECT_EQ(bytes("/var/run/notifications"), before);
}

TEST_F(NotifyUtil, ExplainsItself) {
    const Outcome help =
        notifyBare({.words = {"--root", "/dev/null", "--help"}, .output = {}, .errors = {}});
    EXPECT_EQ(help.status, 0);
    EXPECT_EQ(notify({"-h", "-nonsense"}).output, help.output);
    for (const std::string& line : linesOf(help.output)) {
        EXPECT_LE(line.size(), 80U) << line;
    }
    EXPECT_THAT(notify({"--color", "always", "-h"}).output, HasSubstr("\033[1mExamples:\033[m\n"));
    for (const Words& words : {Words{}, Words{"-v"}}) {
        const Outcome bare = notify(words);
        EXPECT_EQ(bare.status, 2);
        EXPECT_EQ(bare.output, "");
        EXPECT_EQ(bare.errors, help.output);
    }
    EXPECT_THAT(notify({"--version"}).output, MatchesRegex("notifyutil \\(Quillet\\) [0-9.]+\n"));
}

TEST_F(NotifyUtil, HasAManualThatNamesItsOptions) {
    const std::string page = readText(QUILLET_NOTIFYUTIL_MANUAL);
    const std::string help = notify({"-h"}).output;
    const std::regex option{"\n  -([a-zN]|-[a-z]+)"};
    int count = 0;
    for (std::sregex_iterator found{help.begin(), help.end(), option}, end; found != end; ++found) {
        const std::string name = (*found)[1];
        const std::string macro = name == "N" ? "Fl Ns Ar n" : "Fl " + name;
        EXPECT_THAT(page, HasSubstr("\n.It " + macro)) << name;
        ++count;
    }
    EXPECT_EQ(count, 13);
}

}  // namespace
}  // namespace quillet::test
