// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "platform/standin/plist/value.h"
#include "tests/support/program.h"

namespace quillet::test {

/// Files of a device, below its root.
inline constexpr char choicesPath[] = "var/mobile/Library/Preferences/com.velk.switch.ringer.plist";
inline constexpr char settingsPath[] = "var/mobile/Library/Preferences/com.apple.springboard.plist";

/// A command that is put under stress, and the device that it works on.
struct Command {
    std::string name;
    Words words;
    /// The commands that make the device as it is before; none when this one makes it.
    std::vector<Words> preparation;
    /// The state that is asked for, by a flip; nothing for a question.
    std::optional<bool> wantsOn;
};

/// What there is to be seen of a device from outside.
struct DeviceFiles {
    /// All that lies in its folder and beside it.
    std::set<std::string> names;
    // Nothing where there is no dictionary to be read.
    std::optional<standin::Dictionary> choices;
    std::optional<standin::Dictionary> settings;
    std::optional<standin::Dictionary> hardware;
};

/// What goes wrong, or has to.
struct Fault {
    enum class Kind { call, allocation };

    Kind kind = Kind::call;
    /// The call's number, and what becomes of it.
    long call = -1;
    int error = 0;
    /// Which one of these calls, or of the allocations; the first is 1.
    long place = 1;
    /// The same for all that follow; of EINTR for a hundred, as no signal comes for ever.
    bool isForEver = false;
};

/// A fault that took place: the name of the call, and the file that it was about.
struct Injury {
    std::string call;
    int error;
    std::string target;
};

/// What was seen of a run.
struct Run {
    /// See Outcome; meaningless when the program did not end.
    int status = 0;
    bool isLate = false;
    std::string output;
    std::string errors;
    std::string trace;
    /// How many calls it made, and which.
    long count = 0;
    std::set<long> calls;
    /// What was open and mapped at its end.
    std::vector<std::string> openFiles;
    std::vector<std::string> mappedFiles;
    std::vector<Injury> injuries;
    DeviceFiles device;
};

/// A folder in which a command is tried again and again.
class Laboratory {
public:
    /// `folder` must be empty. Throws std::runtime_error when the command fails without a fault.
    Laboratory(const Command& command, const std::filesystem::path& folder);

    const Command& command() const { return command_; }
    /// The device before the command.
    const DeviceFiles& before() const { return before_; }
    /// The command without a fault.
    const Run& sound() const { return sound_; }

    /// One run with these faults, on the device as it was before.
    Run run(const std::vector<Fault>& faults);

    /// What the program says of the device now, and what its trace has for the ringer's word.
    struct Answer {
        int status = 0;
        std::string output;
        std::string errors;
        std::optional<std::uint64_t> word;
    };
    Answer ask() const;

    /// How a command of that device is started; `name` is that of the files of what it prints.
    Start startOf(const Words& words, const std::string& name) const;
    /// Puts the device back to what it was before.
    void renew() const;
    DeviceFiles look() const;
    std::filesystem::path root() const { return device() / "root"; }

private:
    void runSoundly(const Words& words) const;
    std::filesystem::path device() const { return folder_ / "device"; }

    Command command_;
    std::filesystem::path folder_;
    DeviceFiles before_;
    Run sound_;
};

}  // namespace quillet::test
