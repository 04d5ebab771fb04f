// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>

#include <filesystem>
#include <optional>
#include <string>
#include <utility>

#include "platform/standin/plist/property_list.h"
#include "springboard/turn.h"
#include "tests/springboard/springboard.h"
#include "tests/support/values.h"

namespace quillet::test {
namespace {

namespace fs = std::filesystem;
using standin::Array;
using standin::Data;
using standin::Date;
using standin::Dictionary;
using standin::Value;
using ::testing::HasSubstr;
using ::testing::StartsWith;

class Prefs : public SpringBoard {
protected:
    /// Runs `springboard prefs` with these words, and expects it to succeed, print nothing and say
    /// `remark` of the switch.
    void change(Words words, const std::string& remark = "") {
        words.insert(words.begin(), "prefs");
        const Outcome outcome = run(words);
        EXPECT_EQ(outcome.status, 0) << testing::PrintToString(words);
        EXPECT_EQ(outcome.output, "") << testing::PrintToString(words);
        EXPECT_EQ(outcome.errors, remark.empty() ? "" : "springboard: " + remark + '\n')
            << testing::PrintToString(words);
    }

    std::optional<Value> stored(const std::string& key) const {
        return dictionary(preferencesPath).find(key);
    }
};

TEST_F(Prefs, AreShownWithWhatIsAbsentAndWhatElseThereIs) {
    write(preferencesPath, Dictionary{{"of others", Array{std::int64_t{1}, "two"}},
                                      {"vibrate-when-on", true},
                                      {"ringtone-volume", double{0.6F}}});
    expectOutput({"prefs"},
                 "ios-vibrate-pattern  absent\n"
                 "vibrate-when-off     absent\n"
                 "vibrate-when-on      true\n"
                 "ringtone-volume      0.6\n"
                 "of others            [1, \"two\"]\n");
    expectOutput({"--json", "prefs"},
                 "{\"of others\": [1, \"two\"], \"vibrate-when-on\": true, "
                 "\"ringtone-volume\": 0.6}\n");
}

TEST_F(Prefs, AreReadByTheirKeys) {
    write(preferencesPath, Dictionary{{"vibrate-when-on", true}, {"name", "a text"}});
    expectOutput({"prefs", "read", "vibrate-when-on"}, "true\n");
    expectOutput({"prefs", "read", "name"}, "a text\n");
    expectOutput({"--json", "prefs", "read", "name"}, "{\"name\": \"a text\"}\n");
    expectFailure(run({"prefs", "read", "vibrate-when-of"}), 1,
                  "no such preference: \"vibrate-when-of\"; did you mean \"vibrate-when-on\"?");
}

TEST_F(Prefs, AreOfTheKindThatTheSwitchLooksFor) {
    for (const char* const word : {"true", "yes", "YES", "1", "2.5"}) {
        change({"set", "vibrate-when-on", word});
        EXPECT_EQ(stored("vibrate-when-on"), Value{true}) << word;
    }
    for (const char* const word : {"false", "no", "False", "0", "-0"}) {
        change({"set", "vibrate-when-on", word});
        EXPECT_EQ(stored("vibrate-when-on"), Value{false}) << word;
    }
    change({"set", "ringtone-volume", "1"});
    EXPECT_EQ(stored("ringtone-volume"), Value{1.0});
    change({"set", "ringtone-volume", "0.6"});
    EXPECT_EQ(stored("ringtone-volume"), Value{double{0.6F}});
}

TEST_F(Prefs, AreChangedBeforeTheEyesOfTheJournal) {
    expectOutput({"prefs", "set", "vibrate-when-on", "yes"}, "");
    EXPECT_TRUE(run({"log"}).output.ends_with("  changed: prefs set vibrate-when-on yes\n"));
}

TEST_F(Prefs, CountFromTheNextFlipOn) {
    change({"set", "ios-vibrate-pattern", "no"});
    change({"set", "vibrate-when-off", "yes"});
    EXPECT_THAT(run({"flip", "off", "--trace"}).errors, HasSubstr("AudioServicesPlaySystemSound"));
}

TEST_F(Prefs, ThatTheSwitchDoesNotKnowAreKeptWithAWord) {
    const std::string meaningless = " means nothing to the switch";
    change({"set", "vibrate-when-of", "1"},
           "\"vibrate-when-of\"" + meaningless + "; did you mean \"vibrate-when-off\"?");
    EXPECT_EQ(stored("vibrate-when-of"), Value{std::int64_t{1}});
    change({"set", "other", "yes"}, "\"other\"" + meaningless);
    EXPECT_EQ(stored("other"), Value{true});
    change({"set", "other", "18446744073709551615"}, "\"other\"" + meaningless);
    EXPECT_EQ(stored("other"), (Value{std::uint64_t{18446744073709551615U}}));
    change({"set", "other", "-1.5"}, "\"other\"" + meaningless);
    EXPECT_EQ(stored("other"), Value{-1.5});
    change({"set", "other", "1 & more"}, "\"other\"" + meaningless);
    EXPECT_EQ(stored("other"), Value{std::string{"1 & more"}});
}

TEST_F(Prefs, WhoseValuesTheSwitchDoesNotExpectAreKeptWithAWord) {
    change({"set", "vibrate-when-on", "yesterday"},
           "vibrate-when-on: no boolean; the switch takes it for true");
    EXPECT_EQ(stored("vibrate-when-on"), Value{std::string{"yesterday"}});
    change({"set", "vibrate-when-on", ""},
           "vibrate-when-on: no boolean; the switch takes it for false");
    change({"set", "ringtone-volume", "7"},
           "ringtone-volume: not from 0 to 1, where the device brings it");
    change({"set", "ringtone-volume", "true"},
           "ringtone-volume: no number; the switch takes it for 1");
    change({"set", "ringtone-volume", "0.5 or so"},
           "ringtone-volume: no number; the switch takes it for 0.5");
}

TEST_F(Prefs, OfOthersAreKept) {
    const Dictionary others = {{"when", Date{60}},
                               {"bytes", Data{"\x01\x02"}},
                               {"inside", Dictionary{{"key", "value"}}},
                               {"ios-vibrate-pattern", true}};
    write(preferencesPath, others);
    change({"set", "vibrate-when-on", "true"});
    Dictionary expected = others;
    expected.set("vibrate-when-on", true);
    EXPECT_EQ(dictionary(preferencesPath), expected);
    change({"unset", "vibrate-when-on"});
    EXPECT_EQ(dictionary(preferencesPath), others);
}

TEST_F(Prefs, ThatAreNotSetAreUnsetWithAWord) {
    const std::string before = bytes(preferencesPath);
    change({"unset", "vibrate-when-on"}, "not set: \"vibrate-when-on\"");
    EXPECT_EQ(bytes(preferencesPath), before);
}

TEST_F(Prefs, KeepTheFormOfTheirFile) {
    writeText(
        onDevice(preferencesPath),
        standin::writePropertyList(Dictionary{{"vibrate-when-on", true}}, standin::Form::binary));
    change({"set", "vibrate-when-off", "true"});
    EXPECT_THAT(bytes(preferencesPath), StartsWith("bplist00"));
    EXPECT_EQ(dictionary(preferencesPath),
              (Dictionary{{"vibrate-when-on", true}, {"vibrate-when-off", true}}));
    fs::remove(onDevice(preferencesPath));
    expectOutput({"--json", "prefs"}, "{}\n");
    change({"set", "vibrate-when-off", "true"});
    EXPECT_THAT(bytes(preferencesPath), StartsWith("<?xml"));
}

TEST_F(Prefs, ThatCannotBeReadAreNeverOverwritten) {
    const fs::path file = onDevice(preferencesPath);
    const fs::path one = folder() / "one.plist";
    writeText(one, standin::writePropertyList(Dictionary{{"vibrate-when-on", true}}));
    const std::pair<std::string, const char*> contents[] = {
        {"\nno property list", "line 2, column 1: text where a tag belongs"},
        {standin::writePropertyList(Array{}), "it holds no dictionary"}};
    for (const auto& [content, reason] : contents) {
        writeText(file, content);
        for (const Words& words : {Words{"prefs"}, Words{"prefs", "read", "a"},
                                   Words{"prefs", "set", "a", "1"}, Words{"prefs", "unset", "a"},
                                   Words{"prefs", "import", one}, Words{"prefs", "export", "-"}}) {
            expectFailure(run(words), 1,
                          file.string() + ": cannot be read as preferences: " + reason + "; ");
            EXPECT_EQ(bytes(preferencesPath), content);
        }
    }
}

TEST_F(Prefs, AreExportedAndImportedBesideWhatIsThere) {
    const fs::path copy = folder() / "copy.plist";
    write(preferencesPath, Dictionary{{"vibrate-when-on", true}, {"ringtone-volume", 0.25}});
    change({"export", copy});
    expectOutput({"prefs", "export", "-"}, readText(copy));
    EXPECT_EQ(standin::readPropertyList(readText(copy)),
              (Value{Dictionary{{"vibrate-when-on", true}, {"ringtone-volume", 0.25}}}));
    write(preferencesPath, Dictionary{{"vibrate-when-on", false}, {"vibrate-when-off", false}});
    change({"import", copy});
    const Dictionary both = {
        {"vibrate-when-on", true}, {"vibrate-when-off", false}, {"ringtone-volume", 0.25}};
    EXPECT_EQ(dictionary(preferencesPath), both);
}

TEST_F(Prefs, AreImportedFromStandardInputWithAWordOfWhatEndsSpringBoard) {
    const fs::path input = folder() / "input.plist";
    writeText(input, standin::writePropertyList(Dictionary{{"vibrate-when-on", Array{}}}));
    const Outcome outcome = runInShell(std::string{QUILLET_SPRINGBOARD} + " --root " +
                                       root().string() + " prefs import - < " + input.string());
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.errors,
              "springboard: vibrate-when-on: neither boolean nor number nor string; it ends "
              "SpringBoard\n");
    EXPECT_EQ(stored("vibrate-when-on"), Value{Array{}});
}

TEST_F(Prefs, AreImportedFromADictionaryOnly) {
    const std::string before = bytes(preferencesPath);
    const fs::path input = folder() / "input.plist";
    expectFailure(run({"prefs", "import", input}), 1, input.string() + ": cannot be read");
    writeText(input, "<array>\n</dict>");
    expectFailure(run({"prefs", "import", input}), 1,
                  input.string() + ": line 2, column 1: an end without a start\n");
    writeText(input, standin::writePropertyList(Array{}));
    expectFailure(run({"prefs", "import", input}), 1, input.string() + ": it holds no dictionary");
    EXPECT_EQ(bytes(preferencesPath), before);
    const std::string nowhere = folder() / "no" / "copy.plist";
    expectFailure(run({"prefs", "export", nowhere}), 1, nowhere + ": cannot be written");
}

TEST_F(Prefs, AreChangedInATurnSoThatNoFlipsVolumeIsLost) {
    auto flip = std::make_optional<Turn>(onDevice("/var/run/springboard.lock"), [] {});
    const fs::path errors = folder() / "set.errors";
    const pid_t process =
        start(QUILLET_SPRINGBOARD,
              {.words = {"--root", root(), "prefs", "set", "vibrate-when-on", "true"},
               .output = folder() / "set.output",
               .errors = errors});
    EXPECT_TRUE(becomesTrue([&] { return readText(errors).ends_with('\n'); }));
    EXPECT_EQ(readText(errors), "springboard: waiting for another flip of this device\n");
    write(preferencesPath, Dictionary{{"ringtone-volume", 0.5}});
    flip.reset();
    EXPECT_EQ(waitFor(process), 0);
    EXPECT_EQ(dictionary(preferencesPath),
              (Dictionary{{"ringtone-volume", 0.5}, {"vibrate-when-on", true}}));
}

TEST_F(Prefs, AreNamedAsTheyShouldBe) {
    expectFailure(run({"prefs", "raed", "a"}), 2,
                  "no such command: \"raed\"; did you mean \"read\"?");
    expectFailure(run({"prefs", "set", "a"}), 2, "set needs a value");
    expectFailure(run({"prefs", "set", "", "1"}), 2, "set needs a name");
    expectFailure(run({"prefs", "set", "a", "\xFF"}), 2, "not UTF-8");
    expectFailure(run({"prefs", "import"}), 2, "import needs a file");
}

}  // namespace
}  // namespace quillet::test
