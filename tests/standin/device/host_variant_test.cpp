// SPDX-License-Identifier: MIT
#include "platform/standin/device/host_variant.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace quillet::test {
namespace {

using standin::Host;
using standin::parseHost;
using Indicator = Host::Indicator;
using Media = Host::Media;

constexpr std::pair<const char*, Indicator> indicators[] = {
    {"absent", Indicator::absent},       {"class", Indicator::atClass},
    {"instance", Indicator::atInstance}, {"no-instance", Indicator::noInstance},
    {"deaf", Indicator::deafInstance},
};
constexpr std::pair<const char*, Media> media[] = {
    {"absent", Media::absent},
    {"instance", Media::present},
    {"no-instance", Media::noInstance},
    {"deaf", Media::deafInstance},
};

void expectHost(const std::string& variant, Indicator indicator, Media controller) {
    const auto host = parseHost(variant);
    ASSERT_TRUE(host) << variant;
    EXPECT_EQ(host->indicator, indicator) << variant;
    EXPECT_EQ(host->media, controller) << variant;
}

TEST(ParseHost, EachWordNamesOneVariantAndLeavesTheOtherClassAsItIsByDefault) {
    for (const auto& [word, variant] : indicators) {
        expectHost(std::string{"indicator="} + word, variant, Media::present);
    }
    for (const auto& [word, variant] : media) {
        expectHost(std::string{"media="} + word, Indicator::atClass, variant);
    }
}

TEST(ParseHost, BothClassesMayBeNamedInEitherOrder) {
    for (const auto& [indicatorWord, indicator] : indicators) {
        for (const auto& [mediaWord, controller] : media) {
            const std::string first = std::string{"indicator="} + indicatorWord;
            const std::string second = std::string{"media="} + mediaWord;
            expectHost(first + "," + second, indicator, controller);
            expectHost(second + "," + first, indicator, controller);
        }
    }
}

TEST(ParseHost, OfTwoWordsForOneClassTheLastCounts) {
    expectHost("indicator=deaf,indicator=absent", Indicator::absent, Media::present);
}

TEST(ParseHost, EverythingElseDescribesNoHost) {
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
        EXPECT_FALSE(parseHost(variant)) << '"' << variant << '"';
    }
}

}  // namespace
}  // namespace quillet::test
