// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "platform/standin/device/root.h"
#include "tests/support/phone.h"

namespace quillet::test {
namespace {

using ::testing::ElementsAreArray;

/// What the bundle exports to announce that something has changed.
class Announcements : public ::testing::Test {
protected:
    void updatePref(const char* key) {
        phone.exported<void(CFStringRef)>("updatePref")(NSString(key));
    }

    Phone phone;
};

TEST_F(Announcements, OfAPreferenceGoThroughTheLibraryLoadedAtRunTime) {
    phone.log().clear();
    updatePref("ring-vibrate");
    const std::string path = std::string{"\""} + standin::DeviceRoot::graphicsServicesPath + "\"";
    EXPECT_THAT(phone.calls(),
                ElementsAreArray(Calls{
                    "dlopen(" + path + ", 1) = true",
                    R"(dlsym("<library>", "GSSendAppPreferencesChanged") = true)",
                    R"(GSSendAppPreferencesChanged("com.apple.springboard", "ring-vibrate"))",
                    R"(dlclose("<library>") = 0)",
                }));
    EXPECT_EQ(phone.device().openLibraries, 0);
}

TEST_F(Announcements, OfAPreferenceDoNothingWithoutTheLibrary) {
    phone.remove(standin::DeviceRoot::graphicsServicesPath);
    phone.log().clear();
    updatePref("ring-vibrate");
    EXPECT_THAT(phone.calls(), ElementsAreArray(Calls{std::string{"dlopen(\""} +
                                                      standin::DeviceRoot::graphicsServicesPath +
                                                      "\", 1) = false"}));
}

TEST_F(Announcements, OfAPreferencePassAnyKeyOn) {
    for (const char* const key : {"", "silent-vibrate", "ü"}) {
        phone.log().clear();
        updatePref(key);
        EXPECT_THAT(only(phone.calls(), {"GSSendAppPreferencesChanged"}),
                    ElementsAreArray({"GSSendAppPreferencesChanged(\"com.apple.springboard\", \"" +
                                      std::string{key} + "\")"}));
    }
}

TEST_F(Announcements, AtTheDarwinCentreArePostedOnSpringBoardsBehalf) {
    phone.log().clear();
    const std::uint32_t posts = phone.posts("a.name");
    phone.exported<void(CFStringRef)>("notifyDarwinCenter")(NSString("a.name"));
    EXPECT_THAT(phone.calls(),
                ElementsAreArray(Calls{
                    R"(CFNotificationCenterGetDarwinNotifyCenter() = "<CFNotificationCenter>")",
                    R"(CFNotificationCenterPostNotification("<CFNotificationCenter>", "a.name", )"
                    R"("com.apple.springboard", null, true))",
                }));
    EXPECT_EQ(phone.posts("a.name"), posts + 1);
}

TEST_F(Announcements, AtTheDarwinCentreReachTheSwitchItself) {
    phone.log().clear();
    phone.exported<void(CFStringRef)>("notifyDarwinCenter")(NSString(ringerStateName));
    phone.device().eventLoop.turn();
    EXPECT_EQ(only(phone.calls(), {"stateDidChangeForSwitchIdentifier:"}).size(), 1U);
}

}  // namespace
}  // namespace quillet::test
