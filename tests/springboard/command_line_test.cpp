// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>

#include <filesystem>
#include <string>

#include "tests/springboard/springboard.h"

namespace quillet::test {
namespace {

constexpr int badUse = 2;

using ::testing::HasSubstr;

class CommandLine : public SpringBoard {
protected:
    void expectBadUse(const Words& words, const std::string& message) {
        SCOPED_TRACE(testing::PrintToString(words));
        const Outcome outcome = run(words);
        expectFailure(outcome, badUse, message);
        EXPECT_THAT(outcome.errors, HasSubstr("Try \"springboard --help\"."));
    }
};

TEST_F(CommandLine, VersionIsOneLine) {
    const Outcome outcome = run({"--version"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.errors, "");
    EXPECT_THAT(outcome.output, testing::MatchesRegex("springboard \\(Quillet\\) [0-9.]+\n"));
}

TEST_F(CommandLine, HelpAndVersionNeedNeitherDeviceNorBundle) {
    for (const char* const option : {"--help", "--version"}) {
        const Words words = {"--root", "/dev/null", "--bundle", "/dev/null", "state", option};
        EXPECT_EQ(runBare({.words = words, .output = {}, .errors = {}}).status, 0) << option;
    }
}

TEST_F(CommandLine, WithoutACommandTheHelpIsOnStandardError) {
    const std::string help = run({"--help"}).output;
    for (const Words& words : {Words{}, Words{"--json"}, Words{"--"}}) {
        const Outcome outcome = run(words);
        EXPECT_EQ(outcome.status, badUse) << testing::PrintToString(words);
        EXPECT_EQ(outcome.output, "") << testing::PrintToString(words);
        EXPECT_EQ(outcome.errors, help) << testing::PrintToString(words);
    }
}

TEST_F(CommandLine, UnknownCommandsAreRefused) {
    for (const char* const word : {"State", "stat", "on", "", "-", "5", "-5"}) {
        expectBadUse({word}, "no such command: \"" + std::string{word} + "\"");
    }
}

TEST_F(CommandLine, UnknownOptionsAreRefused) {
    for (const char* const word : {"--nothing", "-x", "-r", "--h", "--nothing=1"}) {
        expectBadUse({"state", word}, "no such option: \"" + std::string{word} + "\"");
    }
}

TEST_F(CommandLine, AWordThatIsNearlyOneIsAnsweredWithIt) {
    expectBadUse({"flp"}, "no such command: \"flp\"; did you mean \"flip\"?");
    expectBadUse({"help", "stat"}, "no such command: \"stat\"; did you mean \"state\"?");
    expectBadUse({"state", "--jsn"}, "no such option: \"--jsn\"; did you mean \"--json\"?");
    expectBadUse({"state", "--rot=x"}, "no such option: \"--rot=x\"; did you mean \"--root\"?");
    expectBadUse({"help", "help", "stat"}, "no such command: \"stat\"\n");
    expectBadUse({"sing"}, "no such command: \"sing\"\n");
}

TEST_F(CommandLine, AnArgumentForAnOptionThatTakesNoneIsRefused) {
    for (const char* const word : {"--json=yes", "--help=all", "--version="}) {
        expectBadUse({"state", word}, "option takes no argument: \"" + std::string{word} + "\"");
    }
}

TEST_F(CommandLine, AfterTwoDashesEverythingIsAWord) {
    expectOutput({"--", "flip", "off"}, "off\n");
    expectOutput({"flip", "--", "on"}, "on\n");
    expectOutput({"state", "--"}, "on\n");
    expectBadUse({"--", "--help"}, "no such command: \"--help\"");
    expectBadUse({"--", "flip", "--json"}, "neither on nor off: \"--json\"");
    expectBadUse({"state", "--", "--json"}, "unexpected word: \"--json\"");
    expectBadUse({"flip", "--", "--"}, "neither on nor off: \"--\"");
}

TEST_F(CommandLine, AnOptionsArgumentIsNeeded) {
    for (const char* const option :
         {"--root", "--bundle", "--machine", "--host", "--trace-format"}) {
        expectBadUse({"state", option}, std::string{"option \""} + option + "\" needs an argument");
    }
    for (const char* const option : {"--root", "--bundle"}) {
        expectBadUse({"state", option, ""}, std::string{option} + " needs a name");
    }
    expectBadUse({"state", "--trace="}, "--trace=FILE needs a name");
}

TEST_F(CommandLine, WordsThatACommandDoesNotTakeAreRefused) {
    expectBadUse({"state", "on"}, "unexpected word: \"on\"");
    expectBadUse({"watch", "1"}, "unexpected word: \"1\"");
    expectBadUse({"flip", "on", "off"}, "unexpected word: \"off\"");
    expectBadUse({"apply", "1", "-1"}, "unexpected word: \"-1\"");
}

TEST_F(CommandLine, FlipTakesOnOrOffAndNothingElse) {
    for (const char* const word : {"ON", "", "1", "toggle", "-1", "of"}) {
        expectBadUse({"flip", word}, "neither on nor off: \"" + std::string{word} + "\"");
    }
}

TEST_F(CommandLine, ApplyTakesA32BitSignedNumberAndNothingElse) {
    expectBadUse({"apply"}, "apply needs a number");
    for (const char* const word :
         {"", " ", "on", "1x", "x1", "1 ", " 1", "0x1", "1.0", "1e3", "-", "+-1", "++1", "+",
          "2147483648", "-2147483649", "4294967295", "99999999999999999999"}) {
        expectBadUse({"apply", word}, "not a 32-bit signed number: \"" + std::string{word} + "\"");
    }
}

TEST_F(CommandLine, BadUseLeavesTheDeviceAsItIs) {
    const std::string before = bytes("/var/run/notifications");
    expectBadUse({"apply", "0", "1"}, "unexpected word");
    expectBadUse({"flip", "off", "--nothing"}, "no such option");
    EXPECT_EQ(bytes("/var/run/notifications"), before);
    std::filesystem::remove_all(root());
    expectBadUse({"state", "on"}, "unexpected word");
    EXPECT_FALSE(std::filesystem::exists(root())) << "and makes none";
}

TEST_F(CommandLine, OptionsMayFollowTheCommand) {
    const Words words = {"flip", "--json", "off", "--root", root(), "--machine=iPod5,1"};
    const Outcome outcome = runBare({.words = words, .output = {}, .errors = {}});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output, "{\"state\": \"off\"}\n");
}

TEST_F(CommandLine, OptionsMayBeShortenedAndTakeTheirArgumentEitherWay) {
    expectOutput({"--mach", "iPod5,1", "--host=media=deaf", "state"}, "on\n");
}

TEST_F(CommandLine, OfOneOptionGivenTwiceTheLastCounts) {
    expectOutput({"--root", "/dev/null", "--root", root(), "state"}, "on\n");
}

TEST_F(CommandLine, AFlagMayBeRepeated) {
    expectOutput({"--json", "state", "--json"}, "{\"state\": \"on\"}\n");
}

TEST_F(CommandLine, WhatFollowsAnOptionIsItsArgumentWhateverItLooksLike) {
    for (const char* const name : {"--json", "--", "state", "{}", "[a,b]", "-5"}) {
        const Outcome outcome = run({"flip", "--trace", "--machine", name, "off"});
        EXPECT_EQ(outcome.output, "off\n") << outcome.errors;
        EXPECT_THAT(outcome.errors,
                    HasSubstr("\"uname\", \"args\": [\"" + std::string{name} + "\"]"));
    }
}

TEST_F(CommandLine, AMachineNameHasOneTo255Bytes) {
    expectBadUse({"state", "--machine", ""}, "1 to 255 bytes");
    expectBadUse({"state", "--machine", std::string(256, 'x')}, "1 to 255 bytes");
    expectOutput({"state", "--machine", std::string(255, 'x')}, "on\n");
    expectOutput({"state", "--machine", "x"}, "on\n");
}

TEST_F(CommandLine, ATraceFormatIsOneOfThreeWordsAndNeedsATrace) {
    for (const char* const word : {"", "JSON", "xml", "tex"}) {
        expectBadUse({"--trace", "--trace-format", word, "state"},
                     "no such trace format: \"" + std::string{word} + "\"");
    }
    expectBadUse({"--trace-format", "text", "state"}, "--trace-format requires --trace");
}

TEST_F(CommandLine, ColorIsOneOfThreeWords) {
    for (const char* const word : {"auto", "always", "never"}) {
        expectOutput({"--color", word, "state"}, "on\n");
    }
    for (const char* const word : {"", "yes", "Always"}) {
        expectBadUse({"--color", word, "state"},
                     "neither auto nor always nor never: \"" + std::string{word} + "\"");
    }
}

TEST_F(CommandLine, HostVariantsAreTakenWhenTheyDescribeAHost) {
    for (const char* const variant :
         {"indicator=absent,media=absent", "indicator=class", "indicator=instance,media=instance",
          "media=no-instance,indicator=no-instance", "indicator=deaf,media=deaf"}) {
        expectOutput({"--host", variant, "flip", "off"}, "off\n");
        expectOutput({"--host", variant, "flip", "on"}, "on\n");
    }
    for (const char* const variant : {"", "indicator", "indicator=other", "media=class", ","}) {
        expectBadUse({"--host", variant, "state"},
                     "no such host variant: \"" + std::string{variant} + "\"");
    }
}

}  // namespace
}  // namespace quillet::test
