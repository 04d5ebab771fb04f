// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>

#include <string>

#include "platform/springboard_classes.h"
#include "tests/standin/on_a_device.h"

namespace quillet::test {
namespace {

using standin::HostVariant;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr HostVariant::Media everyMedia[] = {
    HostVariant::Media::absent, HostVariant::Media::instance, HostVariant::Media::noInstance,
    HostVariant::Media::deaf};

struct IndicatorRow {
    HostVariant::Indicator variant;
    bool hasClass;
    bool classActivates;
    bool hasInstance;
    bool instanceActivates;
};

constexpr IndicatorRow indicatorRows[] = {
    {HostVariant::Indicator::absent, false, false, false, false},
    {HostVariant::Indicator::class_, true, true, true, false},
    {HostVariant::Indicator::instance, true, false, true, true},
    {HostVariant::Indicator::noInstance, true, false, false, false},
    {HostVariant::Indicator::deaf, true, false, true, false},
};

struct MediaRow {
    HostVariant::Media variant;
    bool hasClass;
    bool hasInstance;
    bool instanceMutes;
};

constexpr MediaRow mediaRows[] = {
    {HostVariant::Media::absent, false, false, false},
    {HostVariant::Media::instance, true, true, true},
    {HostVariant::Media::noInstance, true, false, false},
    {HostVariant::Media::deaf, true, true, false},
};

std::string nameOf(HostVariant::Indicator indicator, HostVariant::Media media) {
    return "indicator " + std::to_string(static_cast<int>(indicator)) + ", media " +
           std::to_string(static_cast<int>(media));
}

class HostClasses : public OnADevice {
protected:
    bool activates(const SBRingerHUDController& receiver) {
        return answers("activate:", [&] { receiver.activate(1); });
    }
    bool mutes(const SBMediaController& receiver) {
        return answers("setRingerMuted:", [&] { receiver.setRingerMuted(YES); });
    }

    /// Whether `send` reaches a receiver that answers `selector`.
    template <class Send>
    bool answers(const std::string& selector, Send send) {
        log().clear();
        send();
        return !only(calls(), {selector}).empty();
    }

    /// Of the process, by a message that its receiver does not answer.
    template <class Send>
    static void expectEnd(Send send) {
        EXPECT_EXIT(send(), ::testing::ExitedWithCode(1), "unrecognized selector");
    }

    void expectIndicator(const IndicatorRow& row) {
        const auto cls = SBRingerHUDController::classInHost();
        EXPECT_EQ(static_cast<bool>(cls), row.hasClass);
        EXPECT_EQ(cls.respondsToSelector("activate:"), row.classActivates);
        EXPECT_EQ(cls.respondsToSelector("sharedInstance"), row.hasClass);
        if (row.hasClass && !row.classActivates) {
            expectEnd([&] { cls.activate(1); });
        } else {
            EXPECT_EQ(activates(cls), row.classActivates);
        }
        const auto instance = cls.sharedInstance();
        EXPECT_EQ(static_cast<bool>(instance), row.hasInstance);
        EXPECT_EQ(instance.respondsToSelector("activate:"), row.instanceActivates);
        EXPECT_EQ(activates(instance), row.instanceActivates);
    }

    void expectMedia(const MediaRow& row) {
        const auto cls = SBMediaController::classInHost();
        EXPECT_EQ(static_cast<bool>(cls), row.hasClass);
        EXPECT_EQ(cls.respondsToSelector("setRingerMuted:"), NO);
        EXPECT_EQ(cls.respondsToSelector("sharedInstance"), row.hasClass);
        if (row.hasClass) expectEnd([&] { cls.setRingerMuted(YES); });
        const auto instance = cls.sharedInstance();
        EXPECT_EQ(static_cast<bool>(instance), row.hasInstance);
        EXPECT_EQ(instance.respondsToSelector("setRingerMuted:"), row.instanceMutes);
        if (row.hasInstance && !row.instanceMutes) {
            expectEnd([&] { instance.setRingerMuted(YES); });
        } else {
            EXPECT_EQ(mutes(instance), row.instanceMutes);
        }
    }
};

TEST_F(HostClasses, EveryVariantHasAndAnswersWhatItSays) {
    for (const IndicatorRow& indicator : indicatorRows) {
        for (const MediaRow& media : mediaRows) {
            SCOPED_TRACE(nameOf(indicator.variant, media.variant));
            device().host = {indicator.variant, media.variant};
            device().hardware.setRingerMuted(false);
            expectIndicator(indicator);
            expectMedia(media);
            EXPECT_EQ(device().hardware.isRingerMuted(), media.instanceMutes);
        }
    }
}

TEST_F(HostClasses, AnAbsentClassIsLookedUpAndThenReachesNobody) {
    for (const HostVariant::Media media : everyMedia) {
        SCOPED_TRACE(nameOf(HostVariant::Indicator::absent, media));
        device().host = {HostVariant::Indicator::absent, media};
        log().clear();
        const auto cls = SBRingerHUDController::classInHost();
        EXPECT_EQ(cls.respondsToSelector("activate:"), NO);
        cls.activate(1);
        cls.sharedInstance().activate(1);
        EXPECT_THAT(calls(), ElementsAre(R"(NSClassFromString("SBRingerHUDController") = null)"));
    }
}

TEST_F(HostClasses, TheClassAndItsInstanceAreTraced) {
    device().host.indicator = HostVariant::Indicator::instance;
    const auto cls = SBRingerHUDController::classInHost();
    cls.respondsToSelector("activate:");
    cls.sharedInstance().activate(0);
    EXPECT_THAT(
        calls(),
        ElementsAre(R"(NSClassFromString("SBRingerHUDController") = "SBRingerHUDController")",
                    R"(SBRingerHUDController respondsToSelector:("activate:") = false)",
                    R"(SBRingerHUDController sharedInstance() = "<SBRingerHUDController>")",
                    "<SBRingerHUDController> activate:(0)"));
}

TEST_F(HostClasses, AnyIntegerMayBeShown) {
    const auto cls = SBRingerHUDController::classInHost();
    log().clear();
    cls.activate(-2147483647 - 1);
    cls.activate(255);
    EXPECT_THAT(calls(), ElementsAre("SBRingerHUDController activate:(-2147483648)",
                                     "SBRingerHUDController activate:(255)"));
}

TEST_F(HostClasses, MutingIsKeptByTheDevice) {
    const auto media = SBMediaController::classInHost().sharedInstance();
    log().clear();
    media.setRingerMuted(YES);
    EXPECT_TRUE(device().hardware.isRingerMuted());
    media.setRingerMuted(NO);
    EXPECT_FALSE(device().hardware.isRingerMuted());
    media.setRingerMuted(0x80);
    EXPECT_TRUE(device().hardware.isRingerMuted()) << "anything but zero is YES";
    EXPECT_THAT(calls(), ElementsAre("<SBMediaController> setRingerMuted:(true)",
                                     "<SBMediaController> setRingerMuted:(false)",
                                     "<SBMediaController> setRingerMuted:(true)"));
}

TEST_F(HostClasses, ADeafIndicatorIsSentNothing) {
    device().host.indicator = HostVariant::Indicator::deaf;
    const auto indicator = SBRingerHUDController::classInHost().sharedInstance();
    log().clear();
    indicator.activate(1);
    EXPECT_THAT(calls(), IsEmpty());
}

}  // namespace
}  // namespace quillet::test
