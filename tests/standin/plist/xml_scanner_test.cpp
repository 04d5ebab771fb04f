// SPDX-License-Identifier: MIT
#include "platform/standin/plist/xml_scanner.h"

#include <gtest/gtest.h>

#include <string>

namespace quillet::standin {
namespace {

XMLScanner::Tag firstTag(std::string document) { return XMLScanner{document}.next(); }

TEST(XMLScanner, NamesOfUpToSevenLettersAreKnown) {
    EXPECT_EQ(firstTag("<integer>").name, xmlName("integer"));
    EXPECT_EQ(firstTag("<integer a=''>").name, xmlName("integer"));
    EXPECT_EQ(firstTag("<a-longer-name>").name, XMLName{0});
}

TEST(XMLScanner, AMalformedTagHasNoName) {
    for (const char* document : {"<true", "<true a='", "</true", "<!-- <true>", "x<true>", ""}) {
        const XMLScanner::Tag tag = firstTag(document);
        EXPECT_EQ(tag.kind, XMLScanner::Kind::malformed) << document;
        EXPECT_EQ(tag.name, XMLName{0}) << document;
    }
}

}  // namespace
}  // namespace quillet::standin
