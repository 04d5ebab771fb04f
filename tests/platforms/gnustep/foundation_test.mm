// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/platforms/gnustep/host.h"
#include "tests/platforms/gnustep/messages.h"
#include "tests/support/phone.h"
#include "tests/support/under_test.h"

#import <Foundation/NSDebug.h>

/// Counts how often a timer of Foundation's own fires.
@interface QuilletTicks : NSObject {
@public
    int count;
}
- (void)tick:(NSTimer*)timer;
@end

@implementation QuilletTicks

- (void)tick:(NSTimer*)__attribute__((unused))timer {
    ++count;
}

@end

namespace quillet::test {
namespace {

using gnustep::asHost;
using standin::Dictionary;

const Dictionary ownVibration = {
    {"ios-vibrate-pattern", false}, {"vibrate-when-off", true}, {"vibrate-when-on", true}};

/// Every object of Foundation's that is alive.
int liveObjects() {
    int count = 0;
    ::Class* const classes = GSDebugAllocationClassList();
    for (::Class* cls = classes; *cls != nil; ++cls) count += GSDebugAllocationCount(*cls);
    NSZoneFree(NSDefaultMallocZone(), classes);
    return count;
}

/// An iPod on which a flip goes through every function of the bundle.
class Counting : public ::testing::Test {
protected:
    Counting() {
        phone_.write(preferencesPath, ownVibration);
        phone_.apply(0);
        phone_.apply(1);
        phone_.device().eventLoop.turn();
    }

    Phone phone_{{.machine = "iPod7,1"}};
};

TEST(Bundle, IsFoundByItsClassWithItsIdentifier) {
    Phone phone;
    asHost([] {
        ::NSBundle* const bundle = [::NSBundle bundleForClass:NSClassFromString(@"RingerSwitch")];
        EXPECT_STREQ([[bundle bundlePath] UTF8String], bundleUnderTest().c_str());
        EXPECT_STREQ([[bundle bundleIdentifier] UTF8String], switchIdentifier);
        EXPECT_TRUE([bundle principalClass] == NSClassFromString(@"RingerSwitch"));
    });
}

TEST(Bundle, AnswersTwoMessagesOfTheSwitchFramework) {
    Phone phone;
    asHost([] {
        const ::Class cls = NSClassFromString(@"RingerSwitch");
        EXPECT_TRUE([cls superclass] == [::NSObject class]);
        EXPECT_TRUE([cls conformsToProtocol:NSProtocolFromString(@"FSSwitchDataSource")]);
        EXPECT_TRUE([cls instancesRespondToSelector:@selector(stateForSwitchIdentifier:)]);
        EXPECT_TRUE([cls instancesRespondToSelector:@selector(applyState:forSwitchIdentifier:)]);
        EXPECT_FALSE([cls instancesRespondToSelector:@selector(titleForSwitchIdentifier:)]);
    });
}

TEST_F(Counting, AFlipLeavesNoCountBehind) {
    const int held = gnustep::countsHeld();
    for (const std::int32_t state : {0, 1, 2, -1}) {
        phone_.apply(state);
        phone_.device().eventLoop.turn();
        phone_.state();
        EXPECT_EQ(gnustep::countsHeld(), held) << state;
    }
}

TEST_F(Counting, AFlipWithoutAReadableFileLeavesNoCountBehind) {
    phone_.writeBytes(preferencesPath, "<plist><array/></plist>");
    phone_.remove(springBoardPreferencesPath);
    const int held = gnustep::countsHeld();
    for (const std::int32_t state : {0, 1}) {
        phone_.apply(state);
        EXPECT_EQ(gnustep::countsHeld(), held) << state;
    }
}

TEST_F(Counting, AFlipWithoutAFileLeavesNoCountBehind) {
    const int held = gnustep::countsHeld();
    for (const std::int32_t state : {0, 1}) {
        phone_.remove(preferencesPath);
        phone_.apply(state);
        EXPECT_EQ(gnustep::countsHeld(), held) << state;
    }
}

TEST_F(Counting, FlipsLeaveNoObjectBehind) {
    GSDebugAllocationActive(true);
    phone_.apply(0);
    phone_.apply(1);
    const int live = liveObjects();
    for (int flip = 0; flip < 20; ++flip) phone_.apply(flip % 2);
    EXPECT_EQ(liveObjects(), live);
    for (int flip = 0; flip < 20; ++flip) {
        phone_.remove(preferencesPath);
        phone_.apply(flip % 2);
    }
    EXPECT_EQ(liveObjects(), live) << "without a file";
    GSDebugAllocationActive(false);
}

TEST_F(Counting, TheFilesDictionaryIsReleasedBeforeTheVolumeIsZeroed) {
    const int held = gnustep::countsHeld();
    std::vector<int> counts;
    phone_.device().trace.setSink([&](const standin::TraceRecord& record) {
        if (record.operation == "writeToFile:atomically:" ||
            record.operation == "setVolumeTo:forCategory:") {
            counts.push_back(gnustep::countsHeld() - held);
        }
    });
    phone_.exported<void()>("turnRingerVolumeOff")();
    // Held with the write: the dictionary. Nothing else is counted by the bundle.
    EXPECT_THAT(counts, ::testing::ElementsAre(1, 0));
}

TEST(RunLoop, OfFoundationServesItsOwnTimersAndTheDevicesObserversWhileTheSwitchWaits) {
    Phone phone{{.clock = standin::Clock::Kind::real}};
    QuilletTicks* const ticks = [[QuilletTicks alloc] init];
    int redraws = 0;
    phone.device().framework.setRedraw([&](std::string_view, FSSwitchState) { ++redraws; });
    asHost([&] {
        [NSTimer scheduledTimerWithTimeInterval:0.1
                                         target:ticks
                                       selector:@selector(tick:)
                                       userInfo:nil
                                        repeats:NO];
    });
    phone.post(ringerStateName);
    const double start = phone.device().clock.now();
    phone.exported<void()>("turnSpringBoardVibrationOff")();
    EXPECT_GE(phone.device().clock.now() - start, 0.5);
    EXPECT_EQ(ticks->count, 1);
    EXPECT_EQ(redraws, 1);
    [ticks release];
}

}  // namespace
}  // namespace quillet::test
