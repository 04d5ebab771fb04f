// SPDX-License-Identifier: MIT
//
// Measures the switch as a whole:
//
//     switch-bench load MODULE N           opens a shared object and closes it again
//     switch-bench flip BUNDLE SETTINGS N  flips, without the waits
//     switch-bench rewrite SETTINGS N      rewrites the settings' file twice, and nothing else
//     switch-bench wait BUNDLE N           flips, with the waits
//
// Prints the median, the least and the first of N durations in nanoseconds. Flips vibrate by the
// switch's own means. The phone is made below TMPDIR, with the file SETTINGS for SpringBoard's
// settings. "load" says on a second line whether the object is gone when it is closed.
#include <dlfcn.h>

#include <cstdio>
#include <filesystem>
#include <stdexcept>
#include <string>

#include "bench/folder.h"
#include "bench/measure.h"
#include "platform/standin/device/device.h"
#include "platform/standin/files/file.h"

namespace quillet::bench {
namespace {

namespace fs = std::filesystem;

constexpr char settingsPath[] = "/var/mobile/Library/Preferences/com.apple.springboard.plist";
constexpr char preferencesPath[] = "/var/mobile/Library/Preferences/com.velk.switch.ringer.plist";

standin::DeviceOptions phoneIn(const Folder& folder, standin::Clock::Kind clock) {
    return {.root = folder.path() / "phone",
            .newFiles = {{preferencesPath,
                          {{"ios-vibrate-pattern", false},
                           {"vibrate-when-off", true},
                           {"vibrate-when-on", true}}}},
            .clock = clock};
}

void measureLoad(const std::string& module, int times) {
    const Folder folder;
    standin::Device device{phoneIn(folder, standin::Clock::Kind::virtualTime)};
    const std::size_t observers = device.observers.count();
    print(measure(times, 1, [&] {
        standin::openSharedObject(module);
        device.observers.keepFirst(observers);
    }));
    void* const left = dlopen(module.c_str(), RTLD_NOW | RTLD_NOLOAD);
    std::puts(left == nullptr ? "unloaded" : "still loaded");
}

void measureFlip(const std::string& bundle, const std::string& settings, int times,
                 standin::Clock::Kind clock) {
    const Folder folder;
    standin::Device device{phoneIn(folder, clock)};
    if (!settings.empty()) {
        const fs::path place = device.below(settingsPath);
        fs::create_directories(place.parent_path());
        fs::copy_file(settings, place, fs::copy_options::overwrite_existing);
    }
    const std::string identifier = device.framework.load(bundle);
    standin::FSSwitchDataSource& flipped = *device.framework.dataSource(identifier);
    const NSString name = standin::makeString(identifier);
    print(measure(times, 1, [&] {
        flipped.applyActionForSwitchIdentifier(name);
        device.eventLoop.turn();
    }));
}

void measureRewrite(const std::string& settings, int times) {
    const Folder folder;
    const fs::path place = folder.path() / "settings.plist";
    fs::copy_file(settings, place);
    print(measure(times, 1, [&] {
        for (int i = 0; i < 2; ++i) {
            const auto bytes = standin::readFile(place);
            if (!bytes || !standin::writeFileAtomically(place, *bytes)) {
                throw std::runtime_error("the settings cannot be written");
            }
        }
    }));
}

void work(const Words& words) {
    const std::string command = wordAt(words, 0);
    const auto times = [&](std::size_t index) { return std::stoi(wordAt(words, index)); };
    if (command == "load") return measureLoad(wordAt(words, 1), times(2));
    if (command == "rewrite") return measureRewrite(wordAt(words, 1), times(2));
    if (command == "wait") {
        return measureFlip(wordAt(words, 1), "", times(2), standin::Clock::Kind::real);
    }
    if (command == "flip") {
        return measureFlip(wordAt(words, 1), wordAt(words, 2), times(3),
                           standin::Clock::Kind::virtualTime);
    }
    throw std::runtime_error("load, flip, rewrite or wait");
}

}  // namespace
}  // namespace quillet::bench

int main(int count, char** arguments) {
    return quillet::bench::run(count, arguments, quillet::bench::work);
}
