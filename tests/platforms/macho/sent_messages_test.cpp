// SPDX-License-Identifier: MIT
//
// What the module sends in a flip beyond the messages that the bundle asks for.

#include "tests/platforms/macho/loader/sent_messages.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "tests/support/phone.h"

namespace quillet::test {
namespace {

using standin::Dictionary;
using standin::HostVariant;
using ::testing::ElementsAre;

/// How many messages a flip takes: those that the bundle asks for, and those beyond.
struct Messages {
    int asked;
    int strings;
    int retains;
    int releases;
    /// `alloc`, which each `init…` takes.
    int allocs;
    /// `class`, of the module's own classes.
    int classes;
    /// Those that reach nobody, asked for or not.
    int toNil;

    bool operator==(const Messages&) const = default;
};

void PrintTo(const Messages& messages, std::ostream* out) {
    *out << "{" << messages.asked << ", " << messages.strings << ", " << messages.retains << ", "
         << messages.releases << ", " << messages.allocs << ", " << messages.classes << ", "
         << messages.toNil << "}";
}

/// The messages among `calls`: they have a receiver, functions have none.
int messagesIn(const Calls& calls) {
    return static_cast<int>(std::ranges::count_if(calls, [](const std::string& call) {
        return call.substr(0, call.find('(')).find(' ') != std::string::npos;
    }));
}

/// The messages of `work` on the phone, with the run loop's turn after it.
template <class Work>
Messages messagesOf(Phone& phone, Work work) {
    phone.log().clear();
    macho::SentMessages sent;
    work();
    phone.device().eventLoop.turn();
    int all = 0;
    for (const auto& [selector, count] : sent.counts) all += count;
    const Messages messages{.asked = messagesIn(phone.calls()),
                            .strings = sent.counts["stringWithUTF8String:"],
                            .retains = sent.counts["retain"],
                            .releases = sent.counts["release"],
                            .allocs = sent.counts["alloc"],
                            .classes = sent.counts["class"],
                            .toNil = sent.toNil};
    EXPECT_EQ(all, messages.asked + messages.strings + messages.retains + messages.releases +
                       messages.allocs + messages.classes)
        << "a message of another kind";
    return messages;
}

const Dictionary systemsVibration = {{"ios-vibrate-pattern", true}};
const Dictionary ownVibration = {
    {"ios-vibrate-pattern", false}, {"vibrate-when-off", true}, {"vibrate-when-on", true}};

constexpr char iPhone[] = "iPhone6,1";
constexpr char iPod[] = "iPod5,1";

/// A flip on a device that has both settings of the vibration, and the given preferences.
Messages flip(FSSwitchState state, const Dictionary& preferences, const char* machine,
              HostVariant host = {}) {
    Phone phone{{.machine = machine, .host = host}};
    phone.write(springBoardPreferencesPath,
                Dictionary{{"ring-vibrate", true}, {"silent-vibrate", false}});
    phone.write(preferencesPath, preferences);
    return messagesOf(phone, [&] { phone.apply(state); });
}

// In the order of the fields of Messages.

TEST(SentMessages, OfAFlipThatLeavesVibrationToTheSystem) {
    EXPECT_EQ(flip(FSSwitchStateOff, systemsVibration, iPhone), (Messages{13, 4, 0, 0, 0, 1, 0}));
    EXPECT_EQ(flip(FSSwitchStateOn, systemsVibration, iPhone), (Messages{13, 4, 0, 0, 0, 1, 0}));
    EXPECT_EQ(flip(FSSwitchStateOff, systemsVibration, iPod), (Messages{23, 10, 0, 1, 1, 1, 0}));
    EXPECT_EQ(flip(FSSwitchStateOn, systemsVibration, iPod), (Messages{18, 7, 0, 1, 1, 1, 1}));
}

TEST(SentMessages, OfAFlipWithItsOwnVibration) {
    EXPECT_EQ(flip(FSSwitchStateOff, ownVibration, iPhone), (Messages{39, 24, 0, 0, 0, 1, 0}));
    EXPECT_EQ(flip(FSSwitchStateOn, ownVibration, iPhone), (Messages{39, 24, 0, 0, 0, 1, 0}));
    EXPECT_EQ(flip(FSSwitchStateOff, ownVibration, iPod), (Messages{49, 30, 0, 1, 1, 1, 0}));
    EXPECT_EQ(flip(FSSwitchStateOn, ownVibration, iPod), (Messages{44, 27, 0, 1, 1, 1, 1}));
}

TEST(SentMessages, OfAFlipInOtherHosts) {
    using Indicator = HostVariant::Indicator;
    using Media = HostVariant::Media;
    const auto flipIn = [](const HostVariant& host) {
        return flip(FSSwitchStateOn, systemsVibration, iPhone, host);
    };
    EXPECT_EQ(flipIn({Indicator::class_, Media::instance}), (Messages{13, 4, 0, 0, 0, 1, 0}));
    EXPECT_EQ(flipIn({Indicator::deaf, Media::deaf}), (Messages{11, 4, 0, 0, 0, 1, 0}));
    EXPECT_EQ(flipIn({Indicator::noInstance, Media::noInstance}), (Messages{10, 4, 0, 0, 0, 1, 1}));
    EXPECT_EQ(flipIn({Indicator::absent, Media::absent}), (Messages{7, 4, 0, 0, 0, 1, 4}));
}

TEST(SentMessages, OfAFlipWithoutAPreferencesFile) {
    const auto flipOn = [](const char* machine, FSSwitchState state) {
        Phone phone{{.machine = machine}};
        return messagesOf(phone, [&] { phone.apply(state); });
    };
    EXPECT_EQ(flipOn(iPhone, FSSwitchStateOff), (Messages{11, 4, 0, 0, 0, 1, 1}));
    EXPECT_EQ(flipOn(iPod, FSSwitchStateOff), (Messages{21, 9, 0, 1, 1, 1, 1}));
    EXPECT_EQ(flipOn(iPod, FSSwitchStateOn), (Messages{15, 6, 0, 0, 1, 1, 2}));
}

TEST(SentMessages, OfAFlipWithoutSpringBoardsSettings) {
    Phone phone;
    phone.write(preferencesPath, ownVibration);
    phone.remove(springBoardPreferencesPath);
    EXPECT_EQ(messagesOf(phone, [&] { phone.apply(FSSwitchStateOff); }),
              (Messages{29, 24, 0, 0, 0, 1, 8}));
}

TEST(SentMessages, OfAStateThatIsNone) {
    EXPECT_EQ(flip(FSSwitchStateIndeterminate, ownVibration, iPod),
              (Messages{0, 0, 0, 0, 0, 0, 0}));
}

TEST(SentMessages, ReleaseTheFilesDictionaryBeforeTheVolumeIsZeroed) {
    Phone phone{{.machine = iPod}};
    macho::SentMessages sent;
    std::vector<int> releases;
    phone.device().trace.setSink([&](const standin::TraceRecord& record) {
        if (record.operation == "writeToFile:atomically:" ||
            record.operation == "setVolumeTo:forCategory:") {
            releases.push_back(sent.counts["release"]);
        }
    });
    phone.exported<void()>("turnRingerVolumeOff")();
    EXPECT_THAT(releases, ElementsAre(0, 1));
}

TEST(SentMessages, OfARefreshAndAQuestion) {
    Phone phone;
    EXPECT_EQ(messagesOf(phone, [&] { phone.post(ringerStateName); }),
              (Messages{4, 0, 0, 0, 0, 1, 0}));
    EXPECT_EQ(messagesOf(phone, [&] { phone.state(); }), (Messages{0, 0, 0, 0, 0, 0, 0}));
}

}  // namespace
}  // namespace quillet::test
