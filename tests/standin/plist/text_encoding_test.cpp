// SPDX-License-Identifier: MIT
#include "platform/standin/plist/text_encoding.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "platform/standin/plist/property_list.h"
#include "tests/support/values.h"

namespace quillet::standin {
namespace {

using namespace std::string_literals;

/// The characters as units of `size` bytes, after a byte-order mark.
std::string inUnits(const std::u32string& text, std::size_t size, bool isHighFirst) {
    std::string bytes;
    for (const char32_t character : U'\uFEFF' + text) {
        for (std::size_t i = 0; i < size; ++i) {
            const std::size_t place = isHighFirst ? size - 1 - i : i;
            bytes += static_cast<char>(static_cast<std::uint32_t>(character) >> (8 * place));
        }
    }
    return bytes;
}

TEST(TextEncoding, UTF16AndUTF32WithAMarkAreReadWhateverTheyDeclare) {
    for (const char32_t* declaration :
         {U"", U"<?xml version='1.0' encoding='UTF-16'?>",
          U"<?xml version='1.0' encoding='utf-8'?>", U"<?xml version='1.0' encoding='unknown'?>"}) {
        for (const bool isHighFirst : {false, true}) {
            const std::u32string document = declaration + U"<string>a\u00E9\u20AC\uD7FF</string>"s;
            for (const std::size_t size : {std::size_t{2}, std::size_t{4}}) {
                EXPECT_EQ(readPropertyList(inUnits(document, size, isHighFirst)),
                          Value{"a\u00E9\u20AC\uD7FF"})
                    << size << isHighFirst;
            }
        }
    }
}

TEST(TextEncoding, PairsOfUnitsAreOneCharacterAndSingleOnesAreReplaced) {
    const auto text = [](const std::u32string& units) {
        return readPropertyList(inUnits(U"<string>" + units + U"</string>", 2, true));
    };
    EXPECT_EQ(text({char32_t{0xD83D}, char32_t{0xDE00}}), Value{"\U0001F600"});
    EXPECT_EQ(text({char32_t{0xD83D}}), Value{"\uFFFD"});
    EXPECT_EQ(text({char32_t{0xDE00}, char32_t{0xD83D}}), Value{"\uFFFD\uFFFD"});
}

TEST(TextEncoding, HalfACharacterAtTheEndIsIgnored) {
    for (const std::size_t size : {std::size_t{2}, std::size_t{4}}) {
        EXPECT_EQ(readPropertyList(inUnits(U"<true/>", size, false) + 'x'), Value{true}) << size;
    }
    EXPECT_EQ(documentInUTF8("\xFE\xFF\0a\xD8\x3D\xDE"s), "a\uFFFD");
    EXPECT_EQ(readPropertyList("\xFE\xFF"), std::nullopt);
    EXPECT_EQ(readPropertyList("\xFF\xFE\0\0"s), std::nullopt);
}

TEST(TextEncoding, AMarkBeforeUTF8IsSkippedOnce) {
    EXPECT_EQ(readPropertyList("\xEF\xBB\xBF<string>\u00E9</string>"), Value{"\u00E9"});
    EXPECT_EQ(readPropertyList("\xEF\xBB\xBF\xEF\xBB\xBF<true/>"), std::nullopt);
}

std::string declared(const std::string& encoding, const std::string& text) {
    return "<?xml version='1.0' encoding=\"" + encoding + "\"?><string>" + text + "</string>";
}

TEST(TextEncoding, UTF8HasSeveralNames) {
    for (const char* name : {"UTF-8", "utf-8", "utf8", "UTF8", "US-ASCII", "ascii"}) {
        EXPECT_EQ(readPropertyList(declared(name, "\u00E9")), Value{"\u00E9"}) << name;
        EXPECT_EQ(readPropertyList(declared(name, "\xE9")), std::nullopt) << name;
    }
}

TEST(TextEncoding, SingleBytesAreLatin1OrItsRelativeWithTheTypographersQuotes) {
    for (const char* name : {"ISO-8859-1", "iso8859-1", "iso_8859-1", "latin1"}) {
        EXPECT_EQ(readPropertyList(declared(name, "a\xE9\x80\xFF")), Value{"a\u00E9\u0080\u00FF"})
            << name;
    }
    for (const char* name : {"windows-1252", "Windows-1252", "cp1252"}) {
        EXPECT_EQ(readPropertyList(declared(name, "a\xE9\x80\x9F\x81\xA0\x93")),
                  Value{"a\u00E9\u20AC\u0178\u0081\u00A0\u201C"})
            << name;
    }
}

TEST(TextEncoding, OnlyADeclarationAtTheVeryStartTellsTheEncoding) {
    EXPECT_EQ(readPropertyList(" <?xml version='1.0' encoding='unknown'?><true/>"), Value{true});
    EXPECT_EQ(readPropertyList("<?xmlish encoding='unknown'?><true/>"), Value{true});
    EXPECT_EQ(readPropertyList("<?xml version='1.0' encoding='unknown'?><true/>"), std::nullopt);
}

}  // namespace
}  // namespace quillet::standin
