// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

#include "platform/standin/plist/property_list.h"
#include "tests/springboard/springboard.h"
#include "tests/support/values.h"

namespace quillet::test {
namespace {

using namespace std::string_literals;
using standin::Array;
using standin::Data;
using standin::Date;
using standin::Dictionary;
using standin::Form;
using standin::UID;

constexpr double infinity = std::numeric_limits<double>::infinity();

const Dictionary everyKind{{"flag", true},
                           {"negative", std::int64_t{-7}},
                           {"huge", std::uint64_t{1} << 63},
                           {"real", 0.5},
                           {"whole", 2.0},
                           {"infinite", Array{infinity, -infinity, std::nan("")}},
                           {"date", Date{97445.5}},
                           {"data", Data{"QUI"}},
                           {"uid", UID{7}},
                           {"text \"1\"", "\u20AC\n"s},
                           {"none", Dictionary{{"a", Array()}, {"d", Dictionary{}}}}};

class PlistCommands : public SpringBoard {
protected:
    /// Runs `springboard plist` with these words, where there is no device.
    Outcome plist(Words words) {
        words.insert(words.begin(), "plist");
        return runBare({.words = words,
                        .unset = {"QUILLET_ROOT", "XDG_STATE_HOME", "HOME"},
                        .output = {},
                        .errors = {}});
    }
    /// What it prints when it succeeds.
    std::string printed(const Words& words) {
        const Outcome outcome = plist(words);
        EXPECT_EQ(outcome.status, 0) << testing::PrintToString(words);
        EXPECT_EQ(outcome.errors, "") << testing::PrintToString(words);
        return outcome.output;
    }
    std::string file(const std::string& bytes) const {
        writeText(folder() / "a.plist", bytes);
        return folder() / "a.plist";
    }
};

TEST_F(PlistCommands, ConvertWritesTheOtherForm) {
    const std::string xml = writePropertyList(everyKind);
    const std::string binary = writePropertyList(everyKind, Form::binary);
    EXPECT_EQ(printed({"convert", "binary", file(binary)}), binary);
    EXPECT_EQ(printed({"convert", "xml", file(binary)}), xml);
    EXPECT_EQ(printed({"print", file(binary)}), xml);
    const std::string other = folder() / "b.plist";
    EXPECT_EQ(printed({"convert", "binary", file(xml), "-o", other}), "");
    EXPECT_EQ(readText(other), writePropertyList(*standin::readPropertyList(xml), Form::binary));
    EXPECT_EQ(printed({"convert", "xml", "--output", other, other}), "") << "the file itself";
    EXPECT_EQ(readText(other), xml);
}

TEST_F(PlistCommands, ConvertWritesJSONWithWordsForWhatThatLacks) {
    EXPECT_EQ(printed({"convert", "json", file(writePropertyList(everyKind, Form::binary))}),
              R"({
  "flag": true,
  "negative": -7,
  "huge": 9223372036854775808,
  "real": 0.5,
  "whole": 2.0,
  "infinite": [
    "+infinity",
    "-infinity",
    "nan"
  ],
  "date": "2001-01-02T03:04:05Z",
  "data": "UVVJ",
  "uid": {"CF$UID": 7},
  "text \"1\"": ")"
              "\u20AC"
              R"(\n",
  "none": {
    "a": [],
    "d": {}
  }
}
)");
    EXPECT_EQ(printed({"--json", "print", file("<string>a</string>")}), "\"a\"\n");
    EXPECT_EQ(printed({"--json", "print", file("<dict/>")}), "{}\n");
}

TEST_F(PlistCommands, GetPrintsTheValueAtAPath) {
    const std::string list = file(writePropertyList(
        Dictionary{{"a", Array{false, Dictionary{{"b.c", "the longer"s}, {"b", "the shorter"s}}}},
                   {"a.b", Date{0}},
                   {"", Data{"QUI"}},
                   {"empty", Dictionary{{"", 1.0}}}}));
    const std::pair<const char*, const char*> rows[] = {
        {"a.0", "false\n"},
        {"a.1.b.c", "the longer\n"},
        {"a.1.b", "the shorter\n"},
        {"a.b", "2001-01-01T00:00:00Z\n"},
        {"", "UVVJ\n"},
        {"empty.", "1.0\n"},
    };
    for (const auto& [path, text] : rows) EXPECT_EQ(printed({"get", path, list}), text) << path;
    EXPECT_EQ(
        printed({"get", "a", list, "--json"}),
        "[\n  false,\n  {\n    \"b.c\": \"the longer\",\n    \"b\": \"the shorter\"\n  }\n]\n");
    EXPECT_EQ(printed({"get", "empty", list}), writePropertyList(Dictionary{{"", 1.0}}));
    for (const char* const path : {"b", "a.2", "a.-1", "a.0.x", "a.", "a.1.b.", "a.00x", ".."}) {
        expectFailure(plist({"get", path, list}), 1, "nothing is at \""s + path + '"');
    }
}

TEST_F(PlistCommands, LintTellsWhereAndWhy) {
    EXPECT_EQ(printed({"lint", file("<true/>")}), (folder() / "a.plist").string() + ": OK\n");
    expectFailure(plist({"lint", file("<dict>\n<key>a</key>\n</dict>")}), 1,
                  "a.plist: line 3, column 1: a key without a value\n");
    expectFailure(plist({"lint", file("bplist00")}), 1, "a.plist: offset 0: a trailer");
    expectFailure(plist({"lint", folder()}), 1, folder().string() + ": cannot be read");
}

TEST_F(PlistCommands, AHyphenIsStandardInputAndOutput) {
    const std::string command = "\"" QUILLET_SPRINGBOARD "\" plist ";
    const std::string list = file("<array><true/></array>");
    const Outcome piped =
        runInShell(command + "convert binary - -o - < " + list + " | " + command + "get 0 -");
    EXPECT_EQ(piped.output, "true\n") << piped.errors;
    const Outcome broken = runInShell("printf '<a>' | " + command + "lint -");
    EXPECT_EQ(broken.status, 1);
    EXPECT_EQ(broken.errors,
              "springboard: standard input: line 1, column 1: an element that no "
              "property list has\n");
}

TEST_F(PlistCommands, WhatCannotBeWrittenIsNamed) {
    expectFailure(plist({"convert", "xml", file("<true/>"), "-o", folder() / "no" / "b"}), 1,
                  "b: cannot be written");
    std::string deep;
    for (int i = 0; i < 500; ++i) deep += "<array>";
    for (int i = 0; i < 100000; ++i) deep += "<true/>";
    for (int i = 0; i < 500; ++i) deep += "</array>";
    for (const char* const form : {"xml", "json"}) {
        expectFailure(plist({"convert", form, file(deep)}), 1, "a.plist: too large in that form");
    }
}

TEST_F(PlistCommands, MakeNoSenseWithoutTheirWords) {
    expectFailure(plist({"convert", "yaml", file("<true/>")}), 2, "\"yaml\" is no form");
    expectFailure(plist({"convert", "xml"}), 2, "needs a file");
    expectFailure(plist({"get", "a"}), 2, "needs a file");
}

}  // namespace
}  // namespace quillet::test
