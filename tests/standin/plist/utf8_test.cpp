// SPDX-License-Identifier: MIT
#include "platform/standin/plist/utf8.h"

#include <gtest/gtest.h>

#include <string>

namespace quillet::standin {
namespace {

using namespace std::string_literals;

TEST(UTF8, CharactersAreAppendedToWhatIsThere) {
    std::string text = "a";
    appendUTF8(text, 0x20AC);
    appendUTF16(text, "b\0c\0"s, HighByte::last);
    appendUTF16(text, "\xD8\x3D\xDE\x00"s, HighByte::first);
    EXPECT_EQ(text, "a\u20ACbc\U0001F600");
}

}  // namespace
}  // namespace quillet::standin
