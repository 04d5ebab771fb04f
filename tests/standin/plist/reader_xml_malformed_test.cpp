// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <chrono>
#include <string>

#include "platform/standin/plist/property_list.h"
#include "tests/support/values.h"

namespace quillet::standin {
namespace {

/// A small document with every kind of element and of markup.
const std::string smallDocument =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?><!DOCTYPE plist [<!ENTITY a 'b'>]>"
    "<plist version=\"1.0\"><dict><key>a&lt;</key><string>b<![CDATA[c]]>&#xE9;\xC3\xA9</string>"
    "<key>d</key><array><integer>-12</integer><real>1.5e3</real><true/><false/></array>"
    "<!-- e --><key>f</key><date>2001-02-03T04:05:06Z</date><key>g</key><data>QUI=</data></dict>"
    "</plist>";

TEST(MalformedXMLPropertyList, DocumentsThatHoldNoValueOrMoreThanOne) {
    for (const char* text : {"",
                             " ",
                             "\xEF\xBB\xBF",
                             "<?xml version='1.0'?>",
                             "<!-- a -->",
                             "<!DOCTYPE plist>",
                             "<plist/>",
                             "<plist></plist>",
                             "<plist>",
                             "</plist>",
                             "<plist><true/>",
                             "<plist><true/><false/></plist>",
                             "<plist><plist><true/></plist><true/></plist>",
                             "<plist><plist/></plist>",
                             "<array><plist><true/><true/></plist></array>",
                             "<array><plist></plist></array>",
                             "<dict><plist><true/></plist></dict>",
                             "hello",
                             "{ a = 1; }",
                             "bplist00",
                             "<"}) {
        EXPECT_EQ(readXMLPropertyList(text), std::nullopt) << text;
    }
}

TEST(MalformedXMLPropertyList, TagsThatDoNotMatch) {
    for (const char* text : {"<array></dict>",
                             "<dict></array>",
                             "<array>",
                             "</array>",
                             "<string></array>",
                             "<string>a",
                             "<string>a</strin>",
                             "<string>a</string",
                             "<string>a</>",
                             "<true>",
                             "<true></false>",
                             "<true>x</true>",
                             "<true><true/></true>",
                             "<string><true/></string>",
                             "<integer><!-- 1 --></integer>",
                             "<array></array x>",
                             "<plist><array></plist></array>",
                             "<plist><array></plist>",
                             "</string>",
                             "<array><//array>"}) {
        EXPECT_EQ(readXMLPropertyList(text), std::nullopt) << text;
    }
}

TEST(MalformedXMLPropertyList, TagsThatAreNoTags) {
    for (const char* text : {"<array",
                             "<array ",
                             "<array a='",
                             "<array a='>",
                             "<array a=\"'></array>",
                             "<array<array/>",
                             "<array a<b></array>",
                             "<>",
                             "</>",
                             "< true/>",
                             "<true / >",
                             "<String/>",
                             "<TRUE/>",
                             "<null/>",
                             "<ustring>a</ustring>",
                             "<!true/>",
                             "<!-- ",
                             "<!-->",
                             "<?p",
                             "<?p>",
                             "<!DOCTYPE",
                             "<!DOCTYPE plist [ ]",
                             "<!DOCTYPE plist 'a>",
                             "<!doctype plist><true/>",
                             "<![CDATA[]]><true/>",
                             "<!DOCTYPE plist><!DOCTYPE plist><true/>",
                             "<!DOCTYPE plist [<!-- ]><true/>",
                             "<array><!DOCTYPE plist></array>",
                             "<!DOCTYPE plist [<?p ]><true/>"}) {
        EXPECT_EQ(readXMLPropertyList(text), std::nullopt) << text;
    }
}

TEST(MalformedXMLPropertyList, TextBetweenElements) {
    for (const char* text :
         {"x<true/>", "<array>x</array>", "<array><true/>x</array>", "<array>&amp;</array>",
          "<array><![CDATA[ ]]></array>", "<dict>x</dict>", "<plist>x<true/></plist>",
          "<plist><true/>x</plist>", "\v<true/>", "\xEF\xBB\xBF\xEF\xBB\xBF<true/>"}) {
        EXPECT_EQ(readXMLPropertyList(text), std::nullopt) << text;
    }
    EXPECT_EQ(readXMLPropertyList(std::string("<array>\0</array>", 16)), std::nullopt);
}

TEST(MalformedXMLPropertyList, ADeclarationInsideText) {
    for (const char* text :
         {"<string>a<?xml version='1.0'?>b</string>", "<string><?xml ?></string>",
          "<string><?xml\n?></string>", "<dict><key><?xml version='1.0'?></key><true/></dict>"}) {
        EXPECT_EQ(readXMLPropertyList(text), std::nullopt) << text;
    }
    EXPECT_EQ(readXMLPropertyList("<string>a<?xmlish b?>c</string>"), Value{"ac"});
}

TEST(MalformedXMLPropertyList, DictionariesWhoseKeysAndValuesDoNotAlternate) {
    for (const char* text :
         {"<dict><true/></dict>", "<dict><key>a</key></dict>",
          "<dict><key>a</key><key>b</key></dict>", "<dict><key>a</key><key>b</key><true/></dict>",
          "<dict><key>a</key><true/><true/></dict>", "<dict><key>a</key><true/><key>b</key></dict>",
          "<dict><dict/></dict>", "<dict><array></array></dict>", "<key>a</key>", "<key/>",
          "<array><key>a</key></array>", "<dict><key>a</dict>",
          "<dict><key><true/></key></dict>"}) {
        EXPECT_EQ(readXMLPropertyList(text), std::nullopt) << text;
    }
}

TEST(MalformedXMLPropertyList, EncodingsThatAreUnknown) {
    for (const char* encoding :
         {"UTF-16", "utf-16", "ISO-8859-2", "UTF-8 ", "", "koi8-r", "utf-7", "UTF-32"}) {
        EXPECT_EQ(readXMLPropertyList("<?xml version='1.0' encoding='" + std::string{encoding} +
                                      "'?><true/>"),
                  std::nullopt)
            << encoding;
    }
    for (const char* declaration :
         {"<?xml encoding?>", "<?xml encoding=UTF-8?>", "<?xml version='1?>",
          "<?xml version=\"1.0' ?>", "<?xml a='b' c?>"}) {
        EXPECT_EQ(readXMLPropertyList(declaration + std::string{"<true/>"}), std::nullopt)
            << declaration;
    }
}

TEST(MalformedXMLPropertyList, UTF16WithoutAByteOrderMark) {
    for (const bool isHighFirst : {false, true}) {
        std::string text;
        for (const char c : std::string{"<true/>"}) {
            text += isHighFirst ? std::string{'\0', c} : std::string{c, '\0'};
        }
        EXPECT_EQ(readXMLPropertyList(text), std::nullopt) << isHighFirst;
    }
}

TEST(MalformedXMLPropertyList, BytesThatAreNotUTF8) {
    for (const char* bytes : {"\x80",
                              "\xBF",
                              "\x84\x80",
                              "\xBF\xBF",
                              "\xF8\x90\x80\x80",
                              "\xFF\x90\x80\x80",
                              "\xC0\x80",
                              "\xC1\xBF",
                              "\xC2",
                              "\xC2\x41",
                              "\xC2\xC0",
                              "\xE0\x9F\xBF",
                              "\xE1\x80",
                              "\xE1\x80\x41",
                              "\xED\xA0\x80",
                              "\xED\xBF\xBF",
                              "\xF0\x8F\xBF\xBF",
                              "\xF0\x90\x80",
                              "\xF4\x90\x80\x80",
                              "\xF5\x80\x80\x80",
                              "\xF8\x88\x80\x80\x80",
                              "\xFE",
                              "\xFF"}) {
        // At every place relative to the words in which ASCII is skipped.
        for (std::size_t before = 0; before < 8; ++before) {
            const std::string text = std::string(before, 'a') + bytes;
            for (const std::string& document :
                 {"<string>" + text + "</string>", "<dict><key>" + text + "</key><true/></dict>",
                  "<array><" + text + "/></array>"}) {
                EXPECT_EQ(readXMLPropertyList(document), std::nullopt)
                    << testing::PrintToString(document);
            }
        }
    }
    for (const char* bytes :
         {"\xC2\x80", "\xDF\xBF", "\xE0\xA0\x80", "\xED\x9F\xBF", "\xEE\x80\x80", "\xEF\xBF\xBF",
          "\xF0\x90\x80\x80", "\xF4\x8F\xBF\xBF"}) {
        for (std::size_t before = 0; before < 8; ++before) {
            const std::string text = std::string(before, 'a') + bytes + "z";
            EXPECT_EQ(readXMLPropertyList("<string>" + text + "</string>"), Value{text});
        }
    }
}

TEST(MalformedXMLPropertyList, EveryTruncationOfAGoodDocument) {
    ASSERT_TRUE(readXMLPropertyList(smallDocument));
    for (std::size_t size = 0; size < smallDocument.size(); ++size) {
        EXPECT_EQ(readXMLPropertyList(smallDocument.substr(0, size)), std::nullopt) << size;
    }
}

TEST(MalformedXMLPropertyList, EveryChangeOfOneByteGivesNothingOrAValueThatSurvivesARewrite) {
    int values = 0;
    for (std::size_t i = 0; i < smallDocument.size(); ++i) {
        for (int difference = 1; difference < 256; ++difference) {
            std::string changed = smallDocument;
            changed[i] = static_cast<char>(changed[i] ^ difference);
            const auto value = readXMLPropertyList(changed);
            if (!value) continue;
            ++values;
            ASSERT_EQ(readXMLPropertyList(writePropertyList(*value)), value) << changed;
        }
    }
    EXPECT_GT(values, 0);
}

TEST(MalformedXMLPropertyList, HostileRepetitionsEndInLinearTime) {
    constexpr std::size_t size = 300000;
    const auto repeated = [](const std::string& unit) {
        std::string text;
        while (text.size() < size) text += unit;
        return text;
    };
    const auto start = std::chrono::steady_clock::now();
    for (const char* unit :
         {"<", "<!--", "<?", "<?xml a='b' ", "<!DOCTYPE [", "&", "&#", "<![CDATA[", "<array>",
          "<dict><key>", "<a a='", "'", "\"", "]", " ", "</", "="}) {
        for (const char* before :
             {"", "<string>", "<!DOCTYPE plist [", "<array a=", "<data>", "<real>1", "<?xml "}) {
            EXPECT_EQ(readXMLPropertyList(before + repeated(unit)), std::nullopt) << before << unit;
        }
    }
    // Quadratic time would take many minutes; this is far above what a sanitizer's slowness needs.
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::minutes{2});
}

}  // namespace
}  // namespace quillet::standin
