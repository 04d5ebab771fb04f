// SPDX-License-Identifier: MIT
#include "tests/stress/verdict.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <iterator>
#include <sstream>

#include "tests/model/switch_model.h"
#include "tests/model/trace_world.h"
#include "tests/stress/system_calls.h"
#include "tests/stress/trace_file.h"

namespace quillet::test {

using standin::Dictionary;
using standin::Value;

namespace {

/// A loop that does nothing but call the system shows by so many calls more than are needed.
constexpr long manyCalls = 400;

constexpr char volumeKey[] = "ringtone-volume";

/// As it is named beside the root.
constexpr char hardwareLock[] = "root/var/db/hardware.plist.lock";

std::string lastLineOf(const std::string& text) {
    const Words lines = linesOf(text);
    return lines.empty() ? "" : lines.back();
}

/// What `names` has that `usual` has not, or not so often.
std::vector<std::string> moreThan(const std::vector<std::string>& usual,
                                  const std::vector<std::string>& names) {
    std::vector<std::string> more;
    std::ranges::set_difference(names, usual, std::back_inserter(more));
    return more;
}

/// Looks at one run.
class Judge {
public:
    Judge(const Laboratory& laboratory, const Run& run) : laboratory_{laboratory}, run_{run} {}

    std::vector<std::string> wrongs() {
        judgeEnd();
        judgeTrace();
        if (!laboratory_.command().preparation.empty()) judgeFiles();
        judgeNames();
        judgeHoldings();
        judgeAfterwards();
        return wrongs_;
    }

private:
    void say(const std::string& wrong) { wrongs_.push_back(wrong); }

    bool hasInjury(auto matches) const { return std::ranges::any_of(run_.injuries, matches); }

    /// Whether a fault was about a file whose path has `part`.
    bool isAbout(const std::string& part) const {
        return hasInjury(
            [&](const Injury& injury) { return injury.target.find(part) != std::string::npos; });
    }
    /// Whether a file whose path has `part` was said not to be there.
    bool isDenied(const std::string& part) const {
        return hasInjury([&](const Injury& injury) {
            return (injury.error == ENOENT || injury.error == ENOTDIR) &&
                   injury.target.find(part) != std::string::npos;
        });
    }
    /// Whether memory could not be had.
    bool isAboutMemory() const {
        return hasInjury([](const Injury& injury) {
            return injury.call == "allocation" || injury.call == "mmap" || injury.call == "brk";
        });
    }

    void judgeEnd() {
        if (run_.isLate) return say("does not end");
        if (run_.status < 0) {
            return say("is ended by " + std::string{sigdescr_np(-run_.status)} + ": " +
                       lastLineOf(run_.errors));
        }
        if (run_.status > 1) say("exits " + std::to_string(run_.status));
        if (run_.status == 1 && run_.errors.empty() && !isAbout("run.errors")) {
            say("exits 1 without a message");
        }
        const bool isSlow = hasOneByte() || isDenied("") || hasWaited();
        if (run_.count > laboratory_.sound().count + manyCalls && !isSlow) {
            say("makes hundreds of system calls more than without the fault");
        }
        const bool isAnswered = run_.output == laboratory_.sound().output;
        if (run_.status == 0 && !isAnswered) {
            say("exits 0 and answers \"" + lastLineOf(run_.output) + '"');
        }
    }
    bool hasOneByte() const {
        return hasInjury([](const Injury& injury) { return injury.error == oneByte; });
    }
    /// For a lock that another one has; it is asked for every 10 ms, for a second.
    bool hasWaited() const {
        return hasInjury(
            [](const Injury& injury) { return injury.call == "flock" && injury.error == EAGAIN; });
    }

    /// The calls of the platform are those of the model, or a beginning of them when it fails.
    void judgeTrace() {
        if (isAbout("run.trace") || run_.isLate) return;
        const auto trace = readTrace(run_.trace);
        TraceWorld world{trace};
        try {
            play(world);
        } catch (const TraceEnds& error) {
            if (run_.status == 0) say(error.what());
        } catch (const Mismatch& error) {
            say(error.what());
        }
    }

    void play(TraceWorld& world) {
        SwitchModel model{world};
        if (world.isAtEnd() && run_.status != 0) return;
        model.load();
        const Command& command = laboratory_.command();
        if (command.wantsOn) {
            if (command.words.back() == "flip") model.isOn();
            const bool isOdd = command.words.back() == "2";
            model.apply(isOdd ? 2 : *command.wantsOn ? 1 : 0);
        }
        while (!world.isAtEnd()) {
            if (world.callsObserver()) {
                model.refresh();
            } else {
                model.isOn();
            }
        }
    }

    void judgeFiles() {
        judgeSettings();
        judgeChoices();
        judgeHardware();
    }

    /// As before; or held off, when the file could not be written again.
    void judgeSettings() {
        const Dictionary before = laboratory_.before().settings.value();
        const auto& after = run_.device.settings;
        if (!after) return say("SpringBoard's settings are torn");
        if (*after == before || *after == laboratory_.sound().device.settings) return;
        Dictionary held = before;
        held.set("ring-vibrate", false);
        held.set("silent-vibrate", false);
        const bool excused = isAbout("/Preferences") || isAboutMemoryOfSystem();
        if (*after != held) {
            say("SpringBoard's settings are neither as before nor held off");
        } else if (!excused) {
            say("SpringBoard's settings stay held off");
        }
    }
    /// An allocation that fails is no excuse: settings are put back without.
    bool isAboutMemoryOfSystem() const {
        return hasInjury(
            [](const Injury& injury) { return injury.call == "mmap" || injury.call == "brk"; });
    }

    /// As before, or with a volume.
    void judgeChoices() {
        const auto& before = laboratory_.before().choices;
        const auto& after = run_.device.choices;
        if (before == after || after == laboratory_.sound().device.choices) return;
        if (!after) return say("the preferences are torn or gone");
        Dictionary rest = *after;
        rest.erase(volumeKey);
        Dictionary restBefore = before.value_or(Dictionary{});
        restBefore.erase(volumeKey);
        if (rest == restBefore && isExcusedVolume(*after)) return;
        // A system that says there is no file may be believed.
        const bool isExcused = rest.size() == 0 && isDenied("ringer.plist");
        if (!isExcused) say("the preferences have lost something");
    }
    bool isExcusedVolume(const Dictionary& choices) const {
        return choices.find(volumeKey) == Value{0.0} &&
               (isAbout("hardware") || isAbout("/var/db") || isAboutMemory());
    }

    void judgeHardware() {
        const auto& after = run_.device.hardware;
        if (!after) return say("the hardware's file is torn");
        if (!after->find("ringer-muted") || !after->find("volumes")) {
            say("the hardware's file has lost something");
        }
    }

    /// Nothing lies about but what cannot be removed, and the lock that stays where the hardware's
    /// file is written: a system that says there is none has it written again.
    void judgeNames() {
        const auto& before = laboratory_.before().names;
        const auto& sound = laboratory_.sound().device.names;
        for (const std::string& name : run_.device.names) {
            if (before.contains(name) || sound.contains(name) || isStuck(name)) continue;
            if (name == hardwareLock) continue;
            const bool isDraft = !name.starts_with("root/");
            return say(isDraft ? "leaves half a device behind" : "leaves a file behind");
        }
        for (const std::string& name : before) {
            if (!run_.device.names.contains(name)) say("removes " + name);
        }
    }
    bool isStuck(const std::string& name) const {
        static const std::vector<std::string> removing = {
            "unlink", "unlinkat",   "rmdir", "openat",     "open",  "lstat",
            "stat",   "newfstatat", "statx", "getdents64", "fstat", "fcntl"};
        // Of a folder that cannot be removed all that is in it stays, too.
        const std::string top = name.substr(0, name.find('/'));
        const std::string stuck = top == "root" ? name : top;
        return isAboutMemory() || hasInjury([&](const Injury& injury) {
                   return std::ranges::find(removing, injury.call) != removing.end() &&
                          injury.target.find("device/" + stuck) != std::string::npos;
               });
    }

    void judgeHoldings() {
        if (run_.status != 0 && run_.status != 1) return;
        const Run& sound = laboratory_.sound();
        const auto open = moreThan(sound.openFiles, run_.openFiles);
        if (!open.empty()) say("ends with " + open.front() + " open");
        const bool isUnmapped = !hasInjury([](const Injury& injury) {
            return injury.call == "munmap" || injury.call == "mmap" || injury.call == "mprotect";
        });
        const auto mapped = moreThan(sound.mappedFiles, run_.mappedFiles);
        if (isUnmapped && !mapped.empty()) say("ends with " + mapped.front() + " mapped");
    }

    void judgeAfterwards() {
        const Laboratory::Answer answer = laboratory_.ask();
        if (answer.status != 0) return say("leaves a device that fails: " + answer.errors);
        if (!answer.word) return say("leaves a word that cannot be read");
        if (*answer.word > 1) return say("leaves a torn word");
        const Command& command = laboratory_.command();
        const bool isOn = *answer.word == 1;
        const bool succeeded = run_.status == 0 && !run_.isLate;
        const bool stores = command.wantsOn && command.words.back() != "2";
        if (succeeded && stores && isOn != *command.wantsOn) {
            say("exits 0, and the switch is as it was");
        }
    }

    const Laboratory& laboratory_;
    const Run& run_;
    std::vector<std::string> wrongs_;
};

}  // namespace

std::vector<std::string> wrongsOf(const Laboratory& laboratory, const Run& run) {
    return Judge{laboratory, run}.wrongs();
}

}  // namespace quillet::test
