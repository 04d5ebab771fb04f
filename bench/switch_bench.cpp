// SPDX-License-Identifier: MIT
//
// Measures the switch as a whole:
//
//     switch-bench load MODULE N           opens a shared object and closes it again
//     switch-bench flip BUNDLE SETTINGS N  flips, without the waits
//     switch-bench wait BUNDLE N           flips, with the waits
//
// Prints the median, the least and the first of N durations in nanoseconds. Flips vibrate by the
// switch's own means. The phone is made below TMPDIR, with the file SETTINGS for SpringBoard's
// settings. "load" says on a second line whether the object is gone when it is closed. "flip" takes
// turns with its floors: the second line is of two rewrites of the settings, the third of these and
// of one of the hardware's state, which are all the files that a flip replaces.
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

/// A phone with the bundle in its SpringBoard.
class Flipper {
public:
    Flipper(const standin::DeviceOptions& options, const std::string& bundle)
        : device{options}, identifier_{device.framework.load(bundle)} {}

    void flip() {
        device.framework.dataSource(identifier_)->applyActionForSwitchIdentifier(name_);
        device.eventLoop.turn();
    }

    standin::Device device;

private:
    std::string identifier_;
    NSString name_ = standin::makeString(identifier_);
};

/// Replaces the file by one that holds the same, as all files of a phone are replaced.
void rewrite(const fs::path& file) {
    const auto bytes = standin::readFile(file);
    if (!bytes || !standin::writeFileAtomically(file, *bytes)) {
        throw std::runtime_error("a file cannot be written");
    }
}

/// What a disk takes varies from one second to the next, so all three are measured in each round.
void measureFlip(const std::string& bundle, const std::string& settings, int times) {
    const Folder folder;
    Flipper flipper{phoneIn(folder, standin::Clock::Kind::virtualTime), bundle};
    constexpr auto inPlace = fs::copy_options::overwrite_existing;
    fs::create_directories(flipper.device.below(settingsPath).parent_path());
    fs::copy_file(settings, flipper.device.below(settingsPath), inPlace);
    const fs::path copy = folder.path() / "settings.plist";
    fs::copy_file(settings, copy);
    const fs::path hardware = folder.path() / "hardware.plist";
    fs::copy_file(flipper.device.below(standin::DeviceRoot::hardwarePath), hardware);

    const auto rewriteSettings = [&] {
        rewrite(copy);
        rewrite(copy);
    };
    const auto rewriteAll = [&] {
        rewriteSettings();
        rewrite(hardware);
    };
    Durations flips;
    Durations two;
    Durations three;
    for (int i = 0; i < times; ++i) {
        flips.push_back(measure(1, 1, [&] { flipper.flip(); }).at(0));
        two.push_back(measure(1, 1, rewriteSettings).at(0));
        three.push_back(measure(1, 1, rewriteAll).at(0));
    }
    for (const Durations& durations : {flips, two, three}) print(durations);
}

void measureWait(const std::string& bundle, int times) {
    const Folder folder;
    Flipper flipper{phoneIn(folder, standin::Clock::Kind::real), bundle};
    print(measure(times, 1, [&] { flipper.flip(); }));
}

void work(const Words& words) {
    const std::string command = wordAt(words, 0);
    const auto times = [&](std::size_t index) { return std::stoi(wordAt(words, index)); };
    if (command == "load") return measureLoad(wordAt(words, 1), times(2));
    if (command == "flip") return measureFlip(wordAt(words, 1), wordAt(words, 2), times(3));
    if (command == "wait") return measureWait(wordAt(words, 1), times(2));
    throw std::runtime_error("load, flip or wait");
}

}  // namespace
}  // namespace quillet::bench

int main(int count, char** arguments) {
    return quillet::bench::run(count, arguments, quillet::bench::work);
}
