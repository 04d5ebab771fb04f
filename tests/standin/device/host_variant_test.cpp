// SPDX-License-Identifier: MIT
#include "platform/standin/device/host_variant.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace quillet::test {
namespace {

using standin::HostVariant;
using standin::parseHostVariant;
using Indicator = HostVariant::Indicator;
using Media = HostVariant::Media;

constexpr std::pair<const char*, Indicator> indicators[] = {
    {"absent", Indicator::absent},     {"class", Indicator::class_},
    {"instance", Indicator::instance}, {"no-instance", Indicator::noInstance},
    {"deaf", Indicator::deaf},
};
constexpr std::pair<const char*, Media> media[] = {
    {"absent", Media::absent},
    {"instance", Media::instance},
    {"no-instance", Media::noInstance},
    {"deaf", Media::deaf},
};

void expectHost(const std::string& variant, Indicator indicator, Media controller) {
    const auto host = parseHostVariant(variant);
    ASSERT_TRUE(host) << variant;
    EXPECT_EQ(host->indicator, indicator) << variant;
    EXPECT_EQ(host->media, controller) << variant;
}

TEST(ParseHostVariant, EachWordNamesOneVariantAndLeavesTheOtherClassAsItIsByDefault) {
    for (const auto& [word, variant] : indicators) {
        expectHost(std::string{"indicator="} + word, variant, Media::instance);
    }
    for (const auto& [word, variant] : media) {
        expectHost(std::string{"media="} + word, Indicator::class_, variant);
    }
}

TEST(ParseHostVariant, BothClassesMayBeNamedInEitherOrder) {
    for (const auto& [indicatorWord, indicator] : indicators) {
        for (const auto& [mediaWord, controller] : media) {
            const std::string first = std::string{"indicator="} + indicatorWord;
            const std::string second = std::string{"media="} + mediaWord;
            expectHost(first + "," + second, indicator, controller);
            expectHost(second + "," + first, indicator, controller);
        }
    }
}

TEST(ParseHostVariant, ReadsWhatAHostIsWrittenAs) {
    for (const auto& [indicatorWord, indicator] : indicators) {
        for (const auto& [mediaWord, controller] : media) {
            expectHost(textOf(HostVariant{indicator, controller}), indicator, controller);
        }
    }
    EXPECT_EQ(textOf(HostVariant{}), "indicator=class,media=instance");
}

TEST(ParseHostVariant, OfTwoWordsForOneClassTheLastCounts) {
    expectHost("indicator=deaf,indicator=absent", Indicator::absent, Media::instance);
}

TEST(ParseHostVariant, EverythingElseDescribesNoHost) {
    for (const char* const variant : {"",
                                      ",",
                                      "indicator",
                                      "indicator=",
                                      "indicator=Class",
                                      "indicator=class ",
                                      " indicator=class",
                                      "indicator=clas",
                                      "indicator=classy",
                                      "media=class",
                                      "media=",
                                      "media=present",
                                      "indicator=class,",
                                      ",indicator=class",
                                      "indicator=class,,media=deaf",
                                      "indicator=class;media=deaf",
                                      "other=absent",
                                      "class",
                                      "indicator=class,media=other",
                                      "=absent",
                                      "indicator==absent"}) {
        EXPECT_FALSE(parseHostVariant(variant)) << '"' << variant << '"';
    }
}

}  // namespace
}  // namespace quillet::test
