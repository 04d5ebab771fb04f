// SPDX-License-Identifier: MIT
#include "platform/standin/plist/fault.h"

#include <gtest/gtest.h>

#include <string>

#include "platform/standin/plist/property_list.h"
#include "tests/standin/plist/binary_property_list.h"
#include "tests/support/values.h"

namespace quillet::standin {
namespace {

using namespace std::string_literals;

std::string complaintAbout(const std::string& bytes) {
    Fault fault;
    return readPropertyList(bytes, &fault) ? "none" : describe(fault, bytes);
}

TEST(Fault, TellsLineAndColumnOfAnXMLDocument) {
    EXPECT_EQ(complaintAbout("<dict>\n\t<key>a</key>\n</dict>\n"),
              "line 3, column 1: a key without a value");
    EXPECT_EQ(complaintAbout(""), "line 1, column 1: an end of the file before that of the value");
    EXPECT_EQ(complaintAbout("<array>\r\n\r\n"),
              "line 3, column 1: an end of the file before that of the value");
    EXPECT_EQ(complaintAbout("<!-- a\n b --> x"), "line 2, column 8: text where a tag belongs");
}

TEST(Fault, CountsCharactersWhateverTheEncoding) {
    const std::string inUTF8 = "<array><string>\u00E9\u20AC\U0001F600</string>x</array>";
    const std::string expected = "line 1, column 28: text where a tag belongs";
    EXPECT_EQ(complaintAbout(inUTF8), expected);
    EXPECT_EQ(complaintAbout("\xEF\xBB\xBF" + inUTF8), expected);
    std::string inUTF16 = "\xFE\xFF";
    for (const char c : "<array>\n<a/>"s) inUTF16 += {'\0', c};
    EXPECT_EQ(complaintAbout(inUTF16), "line 2, column 1: an element that no property list has");
    EXPECT_EQ(complaintAbout("<?xml version='1.0' encoding='latin1'?>\n<array>\xE9\xE9</array>"),
              "line 2, column 8: text where a tag belongs");
}

TEST(Fault, IsFoundWhereverTextsWerePutTogetherBeforeIt) {
    EXPECT_EQ(
        complaintAbout("<array><string>&amp;&#10;<![CDATA[\n]]></string>\n<data>AA\nAA</data>\n"
                       "<b/></array>"),
        "line 5, column 1: an element that no property list has");
}

TEST(Fault, TellsWhatIsWrongWithAnXMLDocument) {
    const struct {
        const char* document;
        const char* complaint;
    } cases[] = {
        {"<array></dict>", "column 8: an end without a start"},
        {"</array>", "column 1: an end without a start"},
        {"</string>", "column 1: an end without a start"},
        {"<plist></plist>", "column 8: an end where a value belongs"},
        {"<plist><true/><true/></plist>", "column 15: a second value where one belongs"},
        {"<dict><true/></dict>", "column 7: a value without a key"},
        {"<dict><array/></dict>", "column 7: a value without a key"},
        {"<dict><key>a</key><key>b</key></dict>", "column 19: a key without a value"},
        {"<array><key>a</key></array>", "column 8: a key outside a dictionary"},
        {"<integer>x</integer>", "column 1: no integer that 64 bits hold"},
        {"<real/>", "column 1: no real number"},
        {"<date>2001</date>", "column 1: no date"},
        {"<true>x</true>", "column 1: a text in an element that has none"},
        {"<null/>", "column 1: an element that no property list has"},
        {"<a><true/></a>", "column 1: an element that no property list has"},
        {"<a>b</a>", "column 1: an element that no property list has"},
        {"<an-unknown-name>b</an-unknown-name>", "column 1: an element that no property list has"},
        {"<string>a</string", "column 10: an end tag that does not match"},
        {"<array></a>", "column 8: an end without a start"},
        {"<a>", "column 1: an element that no property list has"},
        {"<string>a</strin>", "column 10: an end tag that does not match"},
        {"<string>a</strin<string>", "column 10: an end tag that does not match"},
        {"<string>a", "column 10: an end of the file before that of the value"},
        {"<string>a&nbsp;</string>", "column 11: a reference to no character that is known"},
        {"<string>a&b</string>", "column 11: a reference to no character that is known"},
        {"<string>&amp", "column 10: a reference to no character that is known"},
        {"<string>a<b/></string>", "column 10: an element inside a text"},
        {"<string><?xml ?></string>", "column 9: an XML declaration inside a text"},
        {"<string>ab\xFFz</string>", "column 11: bytes that are no text in UTF-8"},
        {"<array", "column 7: a tag without its end"},
        {"<array a<", "column 9: a tag without its end"},
        {"</array", "column 8: a tag without its end"},
        {"<!-- a", "column 5: something without its end: a comment, a quotation, an instruction"},
        {"<a b='", "column 7: something without its end: a comment, a quotation, an instruction"},
        {"<!DOCTYPE a",
         "column 12: something without its end: a comment, a quotation, an instruction"},
        {"<string><![CDATA[a",
         "column 18: something without its end: a comment, a quotation, an instruction"},
        {"<?xml encoding='koi8-r'?><true/>",
         "column 1: an encoding that is not known, or too many bytes"}};
    for (const auto& [document, complaint] : cases) {
        EXPECT_EQ(complaintAbout(document), "line 1, "s + complaint) << document;
    }
    std::string deep;
    for (int i = 0; i <= maxDepth; ++i) deep += "<array>\n";
    EXPECT_EQ(complaintAbout(deep), "line 513, column 1: containers that nest too deep");
}

TEST(Fault, IsInAnEndTagThatDoesNotMatchWhateverTheElement) {
    for (const std::string name :
         {"string", "integer", "real", "date", "true", "false", "data", "key"}) {
        EXPECT_EQ(complaintAbout("<" + name + ">1</a>"), "line 1, column " +
                                                             std::to_string(name.size() + 4) +
                                                             ": an end tag that does not match");
    }
}

TEST(Fault, TellsOfDuplicateKeysThatTakeTooLongToMerge) {
    // Around so many flags 500 dictionaries, of which each has a key twice.
    const auto document = [](int flags) {
        std::string nested = "<array>";
        for (int i = 0; i < flags; ++i) nested += "<true/>";
        nested += "</array>";
        for (int i = 0; i < 500; ++i) {
            nested =
                "<dict><key>b</key><true/><key>a</key>" + nested + "<key>b</key><true/></dict>";
        }
        return nested;
    };
    EXPECT_EQ(complaintAbout(document(500)), "none");
    EXPECT_TRUE(
        complaintAbout(document(3000)).ends_with(": too many duplicate keys in one another"));
}

TEST(Fault, IsInNoKeysThatAreDifferentHoweverManyAndHoweverDeep) {
    std::string keys;
    for (char key = 'z'; key >= 'a'; --key) keys += "<key>"s + key + "</key><true/>";
    std::string nested = "<array>";
    for (int i = 0; i < 20000; ++i) nested += "<true/>";
    nested += "</array>";
    for (int i = 0; i < 100; ++i) nested = "<dict>" + keys + "<key/>" + nested + "</dict>";
    EXPECT_EQ(complaintAbout(nested), "none");
}

TEST(Fault, OfAnEncodingThatIsNotKnownIsAtTheBegin) {
    Fault fault;
    EXPECT_FALSE(readPropertyList("<?xml version='1.0' encoding='ebcdic'?><true/>", &fault));
    EXPECT_EQ(fault.offset, 0U);
}

TEST(Fault, TellsWhereAndWhatIsWrongWithABinaryFile) {
    const auto complaint = [](const std::vector<std::string>& objects) {
        return complaintAbout(BinaryPropertyList{objects}.bytes());
    };
    EXPECT_EQ(complaintAbout("bplist00"), "offset 0: a trailer that does not fit the file");
    EXPECT_EQ(complaintAbout(BinaryPropertyList{}.bytes()), "offset 8: a reference to no object");
    EXPECT_EQ(complaintAbout(BinaryPropertyList{}.bytes() + "x"),
              "offset 9: a trailer that does not fit the file");
    EXPECT_EQ(complaint({"\x00"s}), "offset 8: an object that is none, or cut short");
    EXPECT_EQ(complaint({"\xA1\x01", "\x13"}), "offset 10: an object that is none, or cut short");
    EXPECT_EQ(complaint({"\x52"
                         "a"}),
              "offset 8: an object that is none, or cut short");
    EXPECT_EQ(complaint({"\xA2\x01"}), "offset 8: a container that is cut short");
    EXPECT_EQ(complaint({"\xA1\x07"}), "offset 10: a reference to no object");
    // An offset that is none is where the fault lies itself.
    const std::string good = BinaryPropertyList{{arrayObject({1}), "\x09"}}.bytes();
    EXPECT_EQ(complaintAbout(std::string{good}.replace(13, 2, 2, '\0')),
              "offset 13: a reference to no object");
    EXPECT_EQ(complaint({"\xD1\x01\x01", "\x09"}), "offset 11: a key that is no string");
    EXPECT_EQ(complaint({"\xA1\x00"s}), "offset 8: containers that nest too deep");
    std::vector<std::string> doubling;
    for (std::uint64_t i = 1; i <= 60; ++i) doubling.push_back(arrayObject({i, i}));
    doubling.push_back("\x09");
    EXPECT_TRUE(
        complaint(doubling).ends_with(": more shared parts than the size of the file allows"));
}

}  // namespace
}  // namespace quillet::standin
