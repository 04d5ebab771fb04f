// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/behaviour/applied.h"
#include "tests/support/phone.h"

namespace quillet::test {
namespace {

using standin::Dictionary;
using ::testing::ElementsAre;

TEST(ApplyStateOnAnIPod, GoesOnWhenTheVolumeCanBeNeitherAskedForNorSet) {
    Phone phone{{.machine = "iPod5,1"}};
    phone.device().hardware = standin::Hardware{"/nonexistent/hardware.plist"};
    EXPECT_THAT(
        applied(phone, 0),
        ElementsAre(taken, stored(0), posted,
                    R"(<AVSystemController> getVolume:forCategory:(null, "Ringtone") = false)",
                    R"(<AVSystemController> setVolumeTo:forCategory:(0, "Ringtone") = false)",
                    indicatorOff, muted, given));
    EXPECT_THAT(
        applied(phone, 1),
        ElementsAre(
            taken, stored(1), posted, indicatorOn, unmuted, "NSThread sleepForTimeInterval:(0.25)",
            R"(<AVSystemController> setVolumeTo:forCategory:(0, "Ringtone") = false)", given));
}

TEST(ApplyStateOnAnIPod, OffSavesTheVolumeAfterThePostAndBeforeTheIndicator) {
    Phone phone{{.machine = "iPod5,1"}};
    phone.device().hardware.setVolume("Ringtone", 0.6F);
    EXPECT_THAT(
        applied(phone, 0),
        ElementsAre(taken, stored(0), posted,
                    R"(<AVSystemController> getVolume:forCategory:(0.6, "Ringtone") = true)",
                    volumeSet("0"), indicatorOff, muted, given));
    EXPECT_EQ(phone.volume(), 0.0F);
}

TEST(ApplyStateOnAnIPod, OnPausesAndRestoresTheVolumeAfterTheVibration) {
    Phone phone{{.machine = "iPod5,1"}};
    phone.device().hardware.setVolume("Ringtone", 0.6F);
    phone.write(preferencesPath, ownVibration(true, true));
    phone.apply(0);
    const double before = phone.device().clock.now();
    phone.log().clear();
    phone.apply(1);
    EXPECT_THAT(only(phone.calls(), {"AudioServicesPlaySystemSound",
                                     "sleepForTimeInterval:", "setVolumeTo:forCategory:"}),
                ElementsAre(vibrated, "NSThread sleepForTimeInterval:(0.25)", volumeSet("0.6")));
    EXPECT_EQ(phone.device().clock.now(), before + 1.25) << "the longest call";
    EXPECT_EQ(phone.volume(), 0.6F);
    EXPECT_THAT(phone.calls().back(), given);
}

TEST(ApplyStateOnAnIPod, OnServesNothingDuringThePause) {
    Phone phone{{.machine = "iPod5,1"}};
    bool served = false;
    phone.device().eventLoop.at(0.125, [&] { served = true; });
    phone.apply(1);
    EXPECT_EQ(phone.device().clock.now(), 0.25);
    EXPECT_FALSE(served);
}

TEST(ApplyStateOnAnIPod, OnWithoutAFileSetsTheFullVolume) {
    Phone phone{{.machine = "iPod5,1"}};
    EXPECT_THAT(only(applied(phone, 1), {"setVolumeTo:forCategory:"}), ElementsAre(volumeSet("1")));
}

TEST(ApplyStateOnAnIPod, OnWithAnUnreadableFileSetsTheFullVolume) {
    Phone phone{{.machine = "iPod5,1"}};
    phone.writeBytes(preferencesPath, "<plist><array/></plist>");
    EXPECT_THAT(only(applied(phone, 1), {"setVolumeTo:forCategory:"}), ElementsAre(volumeSet("1")));
}

TEST(ApplyStateOnAnIPod, OnWithAFileWithoutTheVolumeSetsSilence) {
    Phone phone{{.machine = "iPod5,1"}};
    phone.write(preferencesPath, Dictionary{{"ios-vibrate-pattern", true}});
    EXPECT_THAT(only(applied(phone, 1), {"setVolumeTo:forCategory:"}), ElementsAre(volumeSet("0")));
}

}  // namespace
}  // namespace quillet::test
