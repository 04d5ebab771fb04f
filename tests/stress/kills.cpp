// SPDX-License-Identifier: MIT
#include "tests/stress/kills.h"

#include <algorithm>
#include <chrono>
#include <memory>
#include <random>
#include <string>
#include <thread>

#include "platform/standin/files/file.h"
#include "platform/standin/plist/property_list.h"
#include "tests/stress/commands.h"
#include "tests/stress/companion.h"
#include "tests/stress/laboratory.h"
#include "tests/stress/marks.h"
#include "tests/support/traced.h"

namespace quillet::test {

namespace fs = std::filesystem;
using standin::Dictionary;

namespace {

/// Where a flip is killed: before or after a call, which is the `place`th; or after a time.
struct Instant {
    long place = 0;
    bool isAfter = false;
    std::chrono::microseconds time{0};
};

std::string textOf(const Instant& instant) {
    if (instant.place == 0) {
        return "a kill after " + std::to_string(instant.time.count()) + " microseconds";
    }
    return std::string{"a kill "} + (instant.isAfter ? "after" : "before") + " system call " +
           std::to_string(instant.place);
}

/// Runs a program up to that call, and kills it there. False when it ended before.
bool killAtCall(const Start& how, const Instant& instant) {
    Traced program{QUILLET_SPRINGBOARD, how};
    long calls = 0;
    bool hasBegun = false;
    for (;;) {
        const Traced::Stop stop = program.next();
        if (stop == Traced::Stop::end) return false;
        if (stop == Traced::Stop::late) return true;
        if (stop == Traced::Stop::before && hasBegun) ++calls;
        hasBegun = hasBegun || static_cast<int>(program.argument(0)) == programBegins;
        const bool isThere = calls == instant.place;
        if (isThere && (stop == Traced::Stop::after) == instant.isAfter) return true;
    }
}

bool killInTime(const Start& how, const Instant& instant) {
    Companion program{how};
    std::this_thread::sleep_for(instant.time);
    return program.isRunning();
}

bool killAt(const Start& how, const Instant& instant) {
    return instant.place == 0 ? killInTime(how, instant) : killAtCall(how, instant);
}

/// How many of the device's files have no business there.
long strays(const Laboratory& laboratory) {
    const auto& sound = laboratory.sound().device.names;
    const auto names = laboratory.look().names;
    return std::ranges::count_if(names, [&](auto& name) { return !sound.contains(name); });
}

/// Kills of a command, one after another, of which each is followed by a look at what it left.
class Killing {
public:
    Killing(Laboratory& laboratory, Tally& tally) : laboratory_{laboratory}, tally_{tally} {}
    virtual ~Killing() = default;

    /// False when the command has ended before.
    bool kill(const Instant& instant) {
        instant_ = instant;
        const std::string& name = laboratory_.command().name;
        const bool isKilled = tryOne();
        tally_.tried("kills of " + name);
        return isKilled;
    }

protected:
    virtual bool tryOne() = 0;

    Laboratory& laboratory() { return laboratory_; }
    const Instant& instant() const { return instant_; }
    Start how() const { return laboratory_.startOf(laboratory_.command().words, "killed"); }

    void expect(bool holds, const std::string& wrong, const std::string& errors = "") {
        if (holds) return;
        const std::string& name = laboratory_.command().name;
        tally_.fell("a kill of " + name + " " + wrong, textOf(instant_) + " " + errors);
    }
    void expectEnd(Companion& companion, const std::string& whose) {
        const bool ends = companion.ends();
        expect(ends, "has " + whose + " wait for ever");
        if (!ends) companion.kill();
        expect(!ends || companion.status() == 0, "has " + whose + " fail", companion.errors());
    }

private:
    Laboratory& laboratory_;
    Tally& tally_;
    Instant instant_;
};

/// Of a flip, on a device that lives on from kill to kill.
class FlipKills : public Killing {
public:
    using Killing::Killing;

protected:
    bool tryOne() override {
        const Dictionary& settings = laboratory().before().settings.value();
        standin::writeFileAtomically(laboratory().root() / settingsPath,
                                     standin::writePropertyList(settings));
        Companion writer{laboratory().startOf({"--machine", "iPod5,1", "flip", "on"}, "writer")};
        const bool isKilled = killAt(how(), instant());
        expectEnd(writer, "another writer");
        expectFiles();
        expectLife();
        return isKilled;
    }

private:
    void expectFiles() {
        const DeviceFiles files = laboratory().look();
        Dictionary held = laboratory().before().settings.value();
        held.set("ring-vibrate", false);
        held.set("silent-vibrate", false);
        expect(files.settings == laboratory().before().settings || files.settings == held,
               "tears SpringBoard's settings");
        expect(files.choices && files.choices->find("ios-vibrate-pattern").has_value(),
               "tears the preferences");
        expect(files.hardware && files.hardware->find("ringer-muted").has_value(),
               "tears the hardware's file");
    }

    /// The device answers, flips, and tells those that watch.
    void expectLife() {
        const Laboratory::Answer answer = laboratory().ask();
        expect(answer.status == 0 && answer.word.value_or(2) < 2, "leaves a device that fails");
        const std::string seen = watched();
        Companion next{laboratory().startOf({"flip", "off"}, "next")};
        expectEnd(next, "the next flip");
        const bool isTold = becomesTrue([&] { return watched() != seen; });
        expect(watcher_.isRunning(), "ends who watches");
        expect(isTold, "leaves who watches asleep");
        // One that the last kill left may be there still, in each of the two folders.
        expect(strays(laboratory()) <= 2, "leaves files behind that nobody removes");
    }

    /// What the watcher has printed.
    std::string watched() { return readText(watch_.output); }

    Start watch_ = laboratory().startOf({"watch"}, "watcher");
    Companion watcher_{watch_};
};

/// Of the making of a phone, while another process makes it.
class MakingKills : public Killing {
public:
    using Killing::Killing;

protected:
    bool tryOne() override {
        laboratory().renew();
        Companion other{laboratory().startOf({"state"}, "writer")};
        const bool isKilled = killAt(how(), instant());
        expectEnd(other, "another maker");
        const Laboratory::Answer answer = laboratory().ask();
        expect(answer.status == 0 && answer.word == 1U, "leaves a device that fails");
        expect(strays(laboratory()) == 0, "leaves half a device behind that nobody removes");
        return isKilled;
    }
};

std::unique_ptr<Killing> killingOf(Laboratory& laboratory, Tally& tally) {
    if (laboratory.command().wantsOn) return std::make_unique<FlipKills>(laboratory, tally);
    return std::make_unique<MakingKills>(laboratory, tally);
}

/// Every `step`th call from `first` on, until the command ends before it.
void killAtCalls(Killing& killing, long first, long step) {
    for (long place = first; !isTimeOver() && killing.kill({.place = place}); place += step) {
        killing.kill({.place = place, .isAfter = true});
    }
}

void killByChance(Killing& killing, std::size_t seed, int times) {
    constexpr long longest = 60'000;
    std::mt19937_64 chance{seed};
    for (int i = 0; i < times && !isTimeOver(); ++i) {
        const auto time = static_cast<long>(chance() % longest);
        killing.kill({.time = std::chrono::microseconds{time}});
    }
}

}  // namespace

Tally tryKills(Extent extent, const fs::path& folder) {
    const std::vector<Command> commands = commandsThatWrite(Extent::brief);
    // Each job takes every so-manieth call; when brief most are left out.
    constexpr std::size_t step = 16;
    const std::size_t jobs =
        extent == Extent::brief ? commands.size() * step / 4 : commands.size() * step;
    const int times = extent == Extent::brief ? 10 : extent == Extent::full ? 40 : 8000;
    return share(jobs, folder, [&](std::size_t job, const fs::path& place, Tally& tally) {
        Laboratory laboratory{commands[job % commands.size()], place};
        const auto killing = killingOf(laboratory, tally);
        killAtCalls(*killing, 1 + static_cast<long>(job / commands.size()), step);
        killByChance(*killing, job, times);
    });
}

}  // namespace quillet::test
