// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "platform/standin/plist/property_list.h"
#include "tests/support/values.h"

namespace quillet::standin {
namespace {

std::string nested(const std::string& start, const std::string& end, int depth) {
    std::string text;
    for (int i = 0; i < depth; ++i) text += start;
    for (int i = 0; i < depth; ++i) text += end;
    return text;
}

TEST(XMLPropertyList, ReadsAllEightKinds) {
    const Dictionary expected{{"string", "text"},
                              {"data", Data{"QUI"}},
                              {"date", Date{0}},
                              {"integer", -12},
                              {"real", 0.75},
                              {"true", true},
                              {"false", false},
                              {"array", Array{1, "two"}},
                              {"dict", Dictionary{{"a", 1}}}};
    EXPECT_EQ(readXMLPropertyList(R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">
<plist version="1.0">
<dict>
    <key>string</key><string>text</string>
    <key>data</key><data>UVVJ</data>
    <key>date</key><date>2001-01-01T00:00:00Z</date>
    <key>integer</key><integer>-12</integer>
    <key>real</key><real>0.75</real>
    <key>true</key><true/>
    <key>false</key><false/>
    <key>array</key><array><integer>1</integer><string>two</string></array>
    <key>dict</key><dict><key>a</key><integer>1</integer></dict>
</dict>
</plist>
)"),
              Value{expected});
}

TEST(XMLPropertyList, ThePrologMayTakeEveryForm) {
    for (const char* prolog :
         {"", "\xEF\xBB\xBF", "<?xml version='1.0'?>", "<?xml version=\"1.0\" encoding=\"utf-8\"?>",
          "<?xml version = '1.0' encoding = 'US-ASCII' standalone='yes' ?>", "<?xml a~='b'?>",
          " \t\r\n", "<!-- a > b -- ' \" <plist> -->", "<!-->-->", "<?style 'a' ?>",
          "<?xmlish encoding='x'?>", "<!DOCTYPE plist>", "<!DOCTYPE plist SYSTEM 'a>b' >",
          "<!DOCTYPE plist [ <!ENTITY a \"]>\"> <!-- ]> ' --> <?p ]> ' ?> ]>",
          "<?xml version='1.0'?><!-- a --><!DOCTYPE plist><?p?><!-- b -->"}) {
        EXPECT_EQ(readXMLPropertyList(prolog + std::string{"<plist><true/></plist>"}), Value{true})
            << prolog;
        EXPECT_EQ(readXMLPropertyList(prolog + std::string{"<true/>"}), Value{true}) << prolog;
    }
}

TEST(XMLPropertyList, WhatFollowsTheValueIsIgnored) {
    for (const char* rest : {"", "\n", " <!-- a -->\n<?p q?> ", "x", "<false/>", "<plist/>",
                             "<plist></plist>", "</plist>", "</array>", "&amp;", "<!DOCTYPE plist>",
                             "<!--", "<?", "<![CDATA[]]>", "<", "\xFF", "\xEF\xBB\xBF"}) {
        EXPECT_EQ(readXMLPropertyList(std::string{"<plist><true/></plist>"} + rest), Value{true})
            << rest;
        EXPECT_EQ(readXMLPropertyList(std::string{"<true/>"} + rest), Value{true}) << rest;
    }
    EXPECT_EQ(readXMLPropertyList(std::string("<true/>\0", 8)), Value{true});
}

TEST(XMLPropertyList, APlistTagMayStandAroundAnyOneValue) {
    EXPECT_EQ(readXMLPropertyList("<plist><plist><true/></plist></plist>"), Value{true});
    EXPECT_EQ(readXMLPropertyList("<array><plist><true/></plist><plist><array/></plist></array>"),
              (Value{Array{true, Array()}}));
    EXPECT_EQ(readXMLPropertyList("<dict><key>a</key><plist><true/></plist></dict>"),
              (Value{Dictionary{{"a", true}}}));
    EXPECT_FALSE(readXMLPropertyList(nested("<plist>", "", 1000000)));
}

TEST(XMLPropertyList, ADictionaryOfOneCertainKeyIsAnArchivesIdentifier) {
    const auto uid = [](const std::string& content) { return "<dict>" + content + "</dict>"; };
    const std::string key = "<key>CF$UID</key>";
    EXPECT_EQ(readXMLPropertyList(uid(key + "<integer>0</integer>")), Value{UID{0}});
    EXPECT_EQ(readXMLPropertyList("<array>" + uid(key + "<integer>7</integer>") + "</array>"),
              (Value{Array{UID{7}}}));
    EXPECT_EQ(readXMLPropertyList(uid(key + "<integer>18446744073709551615</integer>")),
              Value{UID{std::numeric_limits<std::uint64_t>::max()}});
    EXPECT_EQ(readXMLPropertyList(uid(key + "<integer>7</integer>" + key + "<integer>8</integer>")),
              Value{UID{8}});
    EXPECT_EQ(readXMLPropertyList(uid(key + "<integer>-1</integer>")),
              (Value{Dictionary{{"CF$UID", -1}}}));
    EXPECT_EQ(readXMLPropertyList(uid(key + "<true/>")), (Value{Dictionary{{"CF$UID", true}}}));
    EXPECT_EQ(readXMLPropertyList(uid(key + "<string>7</string>")),
              (Value{Dictionary{{"CF$UID", "7"}}}));
    EXPECT_EQ(readXMLPropertyList(uid(key + "<integer>7</integer><key>a</key><true/>")),
              (Value{Dictionary{{"CF$UID", 7}, {"a", true}}}));
    EXPECT_EQ(readXMLPropertyList(uid("<key>a</key><array><string>CF$UID</string>"
                                      "<integer>7</integer></array>")),
              (Value{Dictionary{{"a", Array{"CF$UID", 7}}}}));
    EXPECT_EQ(readXMLPropertyList(uid("<key>cf$uid</key><integer>7</integer>")),
              (Value{Dictionary{{"cf$uid", 7}}}));
}

TEST(XMLPropertyList, EmptyElementsMayCloseThemselves) {
    EXPECT_EQ(readXMLPropertyList("<array/>"), Value{Array()});
    EXPECT_EQ(readXMLPropertyList("<dict />"), Value{Dictionary{}});
    EXPECT_EQ(readXMLPropertyList("<string/>"), Value{""});
    EXPECT_EQ(readXMLPropertyList("<data/>"), Value{Data{}});
    EXPECT_EQ(readXMLPropertyList("<dict><key/><true/></dict>"), (Value{Dictionary{{"", true}}}));
    EXPECT_EQ(readXMLPropertyList("<true></true>"), Value{true});
    EXPECT_EQ(readXMLPropertyList("<false> <!-- a --> </false>"), Value{false});
}

TEST(XMLPropertyList, AttributesAreSkippedEvenWithTagsInTheirQuotes) {
    EXPECT_EQ(
        readXMLPropertyList("<plist a='>' b=\"/>'\"><array x='/'><true\n/></array\t></plist >"),
        (Value{Array{
            true,
        }}));
}

TEST(XMLPropertyList, TextKeepsItsWhiteSpaceAndLosesItsMarkup) {
    EXPECT_EQ(readXMLPropertyList("<string> a\t\n b </string>"), Value{" a\t\n b "});
    EXPECT_EQ(readXMLPropertyList("<string>a\r\nb</string>"), Value{"a\r\nb"});
    EXPECT_EQ(readXMLPropertyList("<string>a<!-- <b> & -->c<?p <q> ?>d</string>"), Value{"acd"});
    EXPECT_EQ(readXMLPropertyList("<string>a<![CDATA[<b>&amp;]] >]]>c]]></string>"),
              Value{"a<b>&amp;]] >c]]>"});
    EXPECT_EQ(readXMLPropertyList("<string>a>b\"c'</string>"), Value{"a>b\"c'"});
    EXPECT_EQ(readXMLPropertyList("<dict><key>a&amp;<![CDATA[<]]></key><true/></dict>"),
              (Value{Dictionary{{"a&<", true}}}));
}

TEST(XMLPropertyList, ReferencesStandForTheirCharacters) {
    EXPECT_EQ(readXMLPropertyList("<string>&amp;&lt;&gt;&quot;&apos;</string>"), Value{"&<>\"'"});
    EXPECT_EQ(readXMLPropertyList("<string>&#65;&#x42;&#x00043;&#13;&#1;</string>"),
              Value{"ABC\r\x01"});
    EXPECT_EQ(readXMLPropertyList("<string>&#0;</string>"), Value{std::string(1, '\0')});
    EXPECT_EQ(
        readXMLPropertyList(
            "<string>&#x7F;&#x80;&#x7FF;&#x800;&#xFFFF;&#x10000;&#x10FFFF;</string>"),
        Value{"\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF\xF0\x90\x80\x80\xF4\x8F\xBF\xBF"});
    EXPECT_EQ(readXMLPropertyList("<string>&#xD800;&#xDFFF;</string>"), Value{"\uFFFD\uFFFD"});
    for (const char* reference :
         {"&", "&;", "&amp", "&AMP;", "&nbsp;", "&#;", "&#x;", "&#X41;", "&#-1;", "&#+1;", "&# 65;",
          "&#65 ;", "&#6a;", "&#x110000;", "&#4294967361;", "& amp;"}) {
        EXPECT_EQ(readXMLPropertyList(std::string{"<string>"} + reference + "</string>"),
                  std::nullopt)
            << reference;
    }
}

TEST(XMLPropertyList, AnEntityOfTheDocumentTypeIsNotExpanded) {
    EXPECT_EQ(readXMLPropertyList("<!DOCTYPE plist [<!ENTITY a 'b'>]><string>&a;</string>"),
              std::nullopt);
}

TEST(XMLPropertyList, OfSeveralEntriesWithOneKeyTheLastCounts) {
    const auto value = readXMLPropertyList(
        "<dict><key>b</key><true/><key>a</key><true/><key>&#98;</key><false/></dict>");
    ASSERT_TRUE(value);
    const std::vector<Entry> expected{{"b", false}, {"a", true}};
    EXPECT_EQ(std::get<Dictionary>(*value).entries(), expected);
}

TEST(XMLPropertyList, AKeyThatStandsTwiceIsFoundAmongFewAndAmongMany) {
    for (const int count : {2, 15, 16, 17, 40}) {
        std::string entries;
        for (int i = count; i > 1; --i) {
            entries += "<key>" + std::to_string(i) + "</key><false/>";
        }
        const auto once = readXMLPropertyList("<dict>" + entries + "</dict>");
        const auto twice = readXMLPropertyList("<dict>" + entries + "<key>2</key><true/></dict>");
        ASSERT_TRUE(once && twice) << count;
        Dictionary expected = std::get<Dictionary>(*once);
        EXPECT_EQ(expected.size(), static_cast<std::size_t>(count - 1));
        expected.set("2", true);
        EXPECT_EQ(*twice, Value{expected}) << count;
    }
}

TEST(XMLPropertyList, ContainersNestAsDeepAsTheLimitAndNoDeeper) {
    EXPECT_TRUE(readXMLPropertyList(nested("<array>", "</array>", maxDepth)));
    EXPECT_TRUE(
        readXMLPropertyList("<plist>" + nested("<array>", "</array>", maxDepth) + "</plist>"));
    EXPECT_FALSE(readXMLPropertyList(nested("<array>", "</array>", maxDepth + 1)));
    const std::string innermost = "<array/>";
    EXPECT_TRUE(readXMLPropertyList(nested("<dict><key/>", "", maxDepth - 1) + innermost +
                                    nested("", "</dict>", maxDepth - 1)));
    EXPECT_FALSE(readXMLPropertyList(nested("<dict><key/>", "", maxDepth) + innermost +
                                     nested("", "</dict>", maxDepth)));
    EXPECT_FALSE(readXMLPropertyList(nested("<array>", "", 1000000)));
}

}  // namespace
}  // namespace quillet::standin
