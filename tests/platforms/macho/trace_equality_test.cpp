// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <string>
#include <vector>

#include "platform/standin/device/device.h"
#include "platform/standin/files/file.h"
#include "platform/standin/plist/property_list.h"
#include "tests/platforms/macho/device_bundle.h"
#include "tests/platforms/macho/loader/module.h"
#include "tests/support/machine.h"
#include "tests/support/names.h"

namespace quillet::test {
namespace {

using standin::Device;
using standin::Dictionary;
using standin::HostVariant;
using standin::Value;
using ::testing::ElementsAreArray;

struct Case {
    std::string machine = "iPhone6,1";
    HostVariant host = {};
    Dictionary preferences = {};
    Dictionary springBoard = {};
};

struct Build {
    std::filesystem::path bundle;
    standin::OpenModule open;
};

const Build forLinux = {QUILLET_BUNDLE, standin::openSharedObject};
const Build forDevice = {deviceBundle(), macho::openMachO};

using Lines = std::vector<std::string>;
using Scenario = void (*)(Device&);

/// All that the build calls in the scenario, with times, receivers, arguments and results.
Lines trace(const Build& build, const Case& with, Scenario scenario) {
    Machine machine{{.machine = with.machine, .host = with.host, .openModule = build.open}};
    Device& device = machine.device();
    standin::writeFileAtomically(device.below(preferencesPath),
                                 standin::writePropertyList(with.preferences));
    standin::writeFileAtomically(device.below(springBoardPreferencesPath),
                                 standin::writePropertyList(with.springBoard));
    Lines lines;
    device.trace.setSink(
        [&](const standin::TraceRecord& record) { lines.push_back(render(record)); });
    device.framework.load(build.bundle);
    scenario(device);
    return lines;
}

void expectEqualTraces(const Case& with, Scenario scenario, std::size_t atLeast) {
    const Lines expected = trace(forLinux, with, scenario);
    EXPECT_GE(expected.size(), atLeast);
    EXPECT_THAT(trace(forDevice, with, scenario), ElementsAreArray(expected));
}

/// Every named state and one without a name, with the run loop's turn after each.
void flip(Device& device) {
    auto* const dataSource = device.framework.dataSource(switchIdentifier);
    for (const int state : {1, 0, 0, 1, -1, 2}) {
        dataSource->applyState(static_cast<FSSwitchState>(state), switchIdentifier);
        device.eventLoop.turn();
        dataSource->stateForSwitchIdentifier(switchIdentifier);
    }
}

template <class Function>
Function* exported(Device& device, const char* name) {
    return reinterpret_cast<Function*>(device.framework.symbol(name));
}

void callExports(Device& device) {
    for (const char* const name :
         {"restoreSpringBoardVibration", "turnSpringBoardVibrationOff",
          "restoreSpringBoardVibration", "turnRingerVolumeOff", "restoreRingerVolume"}) {
        exported<void()>(device, name)();
    }
    exported<BOOL()>(device, "isiPod")();
    for (const char* const name : {"updatePref", "notifyDarwinCenter"}) {
        exported<void(CFStringRef)>(device, name)(NSString("com.apple.springboard.ringerstate"));
    }
    device.eventLoop.turn();
}

std::vector<Dictionary> preferenceFiles() {
    std::vector<Dictionary> files = {{{"ios-vibrate-pattern", true}}};
    for (const bool whenOff : {false, true}) {
        files.push_back({{"ios-vibrate-pattern", false}, {"vibrate-when-off", whenOff}});
        for (const bool whenOn : {false, true}) {
            files.push_back({{"ios-vibrate-pattern", std::string{"no"}},
                             {"vibrate-when-off", whenOff},
                             {"vibrate-when-on", whenOn},
                             {"ringtone-volume", 0.3}});
        }
    }
    return files;
}

constexpr std::array machines = {"iPhone6,1", "iPod5,1"};

TEST(DeviceBuild, FlipsWithTheSameCallsForEveryPreference) {
    for (const char* const machine : machines) {
        for (const Dictionary& preferences : preferenceFiles()) {
            for (const bool vibrates : {false, true}) {
                SCOPED_TRACE(machine + standin::writePropertyList(preferences));
                expectEqualTraces({.machine = machine,
                                   .preferences = preferences,
                                   .springBoard = {{"ring-vibrate", vibrates}}},
                                  flip, 80);
            }
        }
    }
}

TEST(DeviceBuild, FlipsWithTheSameCallsInEveryHost) {
    for (const char* const indicator : {"absent", "class", "instance", "no-instance", "deaf"}) {
        for (const char* const media : {"absent", "instance", "no-instance", "deaf"}) {
            const std::string variant = std::string{"indicator="} + indicator + ",media=" + media;
            SCOPED_TRACE(variant);
            const auto host = standin::parseHostVariant(variant);
            ASSERT_TRUE(host.has_value());
            expectEqualTraces({.host = *host}, flip, 60);
        }
    }
}

TEST(DeviceBuild, ExportsFunctionsThatMakeTheSameCalls) {
    for (const char* const machine : machines) {
        for (const Dictionary& preferences : preferenceFiles()) {
            SCOPED_TRACE(machine + standin::writePropertyList(preferences));
            expectEqualTraces({.machine = machine, .preferences = preferences}, callExports, 60);
        }
    }
}

/// How many more objects there are after the scenario than before.
int objectsLeft(Scenario scenario) {
    const Case with = {.machine = "iPod5,1", .preferences = {{"ios-vibrate-pattern", false}}};
    trace(forDevice, with, scenario);  // The platform's shared objects come to be.
    const int live = standin::Instance::live();
    trace(forDevice, with, scenario);
    return standin::Instance::live() - live;
}

TEST(DeviceBuild, LeavesNoObjectBehind) {
    EXPECT_EQ(objectsLeft([](Device& device) {
                  flip(device);
                  callExports(device);
              }),
              0);
}

TEST(DeviceBuild, LeavesNoObjectBehindWithoutAPreferencesFile) {
    EXPECT_EQ(objectsLeft([](Device& device) {
                  auto* const dataSource = device.framework.dataSource(switchIdentifier);
                  for (const FSSwitchState state : {FSSwitchStateOff, FSSwitchStateOn}) {
                      std::filesystem::remove(device.below(preferencesPath));
                      dataSource->applyState(state, switchIdentifier);
                  }
              }),
              0);
}

}  // namespace
}  // namespace quillet::test
