// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>

#include <filesystem>
#include <string_view>

#include "platform/bundle.h"
#include "platform/celestial.h"
#include "platform/flipswitch.h"
#include "platform/object.h"
#include "platform/property_list.h"
#include "platform/run_loop.h"
#include "platform/springboard_classes.h"
#include "tests/standin/on_a_device.h"
#include "tests/support/names.h"

namespace quillet::test {
namespace {

using ::testing::IsEmpty;

/// Sends every message to nil; at the end of each test nothing may have been recorded.
class NilReference : public OnADevice {
protected:
    void TearDown() override { EXPECT_THAT(calls(), IsEmpty()); }
};

template <class Reference>
void expectEverythingThatEachObjectAnswers() {
    const Reference nil;
    EXPECT_FALSE(nil);
    EXPECT_EQ(nil.instance(), nullptr);
    EXPECT_EQ(nil.respondsToSelector("description"), NO);
    EXPECT_EQ(nil.boolValue(), NO);
    EXPECT_EQ(nil.floatValue(), 0.0F);
    const Reference copy = nil;
    EXPECT_FALSE(copy);
    Reference assigned;
    assigned = nil;
    EXPECT_FALSE(assigned);
}

TEST_F(NilReference, OfEveryClassAnswersNoAndZero) {
    expectEverythingThatEachObjectAnswers<Object>();
    expectEverythingThatEachObjectAnswers<Class>();
    expectEverythingThatEachObjectAnswers<NSString>();
    expectEverythingThatEachObjectAnswers<NSNumber>();
    expectEverythingThatEachObjectAnswers<NSDictionary>();
    expectEverythingThatEachObjectAnswers<NSMutableDictionary>();
    expectEverythingThatEachObjectAnswers<NSFileManager>();
    expectEverythingThatEachObjectAnswers<NSDate>();
    expectEverythingThatEachObjectAnswers<NSRunLoop>();
    expectEverythingThatEachObjectAnswers<NSBundle>();
    expectEverythingThatEachObjectAnswers<FSSwitchPanel>();
    expectEverythingThatEachObjectAnswers<AVSystemController>();
    expectEverythingThatEachObjectAnswers<SBRingerHUDController>();
    expectEverythingThatEachObjectAnswers<SBMediaController>();
}

TEST_F(NilReference, NullPointersMakeNil) {
    EXPECT_FALSE(NSString{CFStringRef{nullptr}});
    EXPECT_EQ(static_cast<CFStringRef>(NSString{}), nullptr);
    EXPECT_FALSE(Class{nullptr});
}

TEST_F(NilReference, ADictionaryHoldsNothingAndTakesNothing) {
    EXPECT_FALSE(NSDictionary{}.objectForKey("key"));
    const NSMutableDictionary dictionary;
    EXPECT_FALSE(dictionary.objectForKey("key"));
    dictionary.setValue(NSString{"value"}, "key");
    dictionary.setObject(NSString{"value"}, "key");
    EXPECT_FALSE(dictionary.objectForKey("key"));
}

TEST_F(NilReference, ADictionaryIsNotWritten) {
    EXPECT_EQ(NSMutableDictionary{}.writeToFile("/var/mobile/new.plist", YES), NO);
    EXPECT_FALSE(std::filesystem::exists(device().below("/var/mobile/new.plist")));
}

TEST_F(NilReference, AFileManagerFindsNoFile) {
    EXPECT_EQ(NSFileManager{}.fileExistsAtPath("/var/run/notifications"), NO);
}

TEST_F(NilReference, ARunLoopDoesNotRun) {
    bool ran = false;
    device().eventLoop.at(0, [&] { ran = true; });
    NSRunLoop{}.runUntilDate(NSDate{});
    EXPECT_FALSE(ran);
    EXPECT_EQ(device().clock.now(), 0.0);
}

TEST_F(NilReference, ABundleHasNoIdentifier) { EXPECT_FALSE(NSBundle{}.bundleIdentifier()); }

TEST_F(NilReference, APanelAsksNobody) {
    bool drawn = false;
    device().framework.setRedraw([&](std::string_view, FSSwitchState) { drawn = true; });
    FSSwitchPanel{}.stateDidChangeForSwitchIdentifier(switchIdentifier);
    EXPECT_FALSE(drawn);
}

TEST_F(NilReference, AVolumeControllerLeavesTheVolumeAndTheVariable) {
    float volume = -1;
    EXPECT_EQ(AVSystemController{}.getVolume(&volume, "Ringtone"), NO);
    EXPECT_EQ(volume, -1);
    EXPECT_EQ(AVSystemController{}.setVolumeTo(0.25F, "Ringtone"), NO);
    EXPECT_EQ(device().hardware.volume("Ringtone"), 0.75F);
}

TEST_F(NilReference, SpringBoardsClassesHaveNoInstanceAndShowAndMuteNothing) {
    EXPECT_FALSE(SBRingerHUDController{}.sharedInstance());
    SBRingerHUDController{}.activate(1);
    EXPECT_FALSE(SBMediaController{}.sharedInstance());
    SBMediaController{}.setRingerMuted(YES);
    EXPECT_FALSE(device().hardware.isRingerMuted());
}

}  // namespace
}  // namespace quillet::test
