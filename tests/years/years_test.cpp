// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "platform/standin/device/device.h"
#include "platform/standin/files/file.h"
#include "platform/standin/plist/property_list.h"
#include "platform/standin/runtime/data_source.h"
#include "platform/standin/runtime/dictionary_file.h"
#include "tests/model/switch_model.h"
#include "tests/support/no_room.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/under_test.h"
#include "tests/years/chance.h"
#include "tests/years/holdings.h"
#include "tests/years/invention.h"
#include "tests/years/simulation.h"

namespace quillet::test {
namespace {

namespace fs = std::filesystem;
using standin::Device;
using standin::DeviceRoot;
using standin::Dictionary;
using standin::TraceRecord;
using standin::Value;
using Kind = FileContent::Kind;

constexpr char identifier[] = "com.velk.switch.ringer";
constexpr char ringerState[] = "com.apple.springboard.ringerstate";
constexpr char choicesPath[] = "/var/mobile/Library/Preferences/com.velk.switch.ringer.plist";
constexpr char settingsPath[] = "/var/mobile/Library/Preferences/com.apple.springboard.plist";
/// A property list, but no dictionary.
constexpr char noDictionary[] = "<plist version=\"1.0\"><array/></plist>";

struct ToValue {
    Value operator()(std::monostate) const { return {}; }
    Value operator()(const auto& plain) const { return plain; }
};

Dictionary dictionaryOf(const FileContent& content) {
    Dictionary dictionary;
    for (const auto& [key, value] : content.entries) {
        dictionary.set(key, std::visit(ToValue{}, value));
    }
    return dictionary;
}

/// A phone that lives for years: steps that chance makes up, each held against the model.
class Years : public testing::Test {
protected:
    Years() {
        device_.trace.setSink([this](TraceRecord record) {
            trace_.push_back(std::move(record));
            if (trace_.size() == meddlesAt_) meddle_();
        });
        device_.framework.load(bundleUnderTest());
        simulation_.begin(0, {});
        model_.load();
        makeNew();
    }

    /// Puts the phone into one certain situation.
    void makeNew() {
        setChoices({Kind::dictionary, {{"ios-vibrate-pattern", false}}});
        setSettings({Kind::dictionary, {{"ring-vibrate", true}}});
        setHardware(0.5F);
        setMachine("iPod5,1");
        setWord(0);
        now_.hasRoom = true;
        setRegisters(true);
        device_.eventLoop.turn();
        now_.isPosted = false;
        trace_.clear();
    }

    /// One step in a situation that chance made. Throws Mismatch.
    void step() {
        change();
        trace_.clear();
        meddlesAt_ = chance_.oneIn(2) ? 1 + chance_.below(70) : 0;
        meddle_ = meddling();
        simulation_.begin(meddlesAt_, outside_);
        const std::size_t kind = chance_.below(10);
        if (kind == 0) {
            ask();
        } else if (kind == 1) {
            tap();
        } else {
            apply(invention_.state());
        }
        simulation_.expectEnd();
        expectSituation();
    }

    Holdings holdings() const { return holdingsWith(device_); }

private:
    /// Does to the phone what only writes where there is room.
    template <class Work>
    void onPhone(Work work) {
        std::optional<NoRoom> noRoom;
        if (!now_.hasRoom) noRoom.emplace();
        work(*device_.framework.dataSource(identifier));
    }

    void ask() {
        FSSwitchState state = FSSwitchStateIndeterminate;
        onPhone([&](auto& dataSource) { state = dataSource.stateForSwitchIdentifier(identifier); });
        const FSSwitchState right = model_.isOn() ? FSSwitchStateOn : FSSwitchStateOff;
        ASSERT_EQ(state, right);
    }

    void tap() {
        onPhone([](auto& dataSource) { dataSource.applyActionForSwitchIdentifier(identifier); });
        model_.apply(model_.isOn() ? 0 : 1);
    }

    void apply(std::int32_t state) {
        const bool turns = chance_.oneIn(2);
        onPhone([&](auto& dataSource) {
            dataSource.applyState(static_cast<FSSwitchState>(state), identifier);
            if (turns) device_.eventLoop.turn();
        });
        model_.apply(state);
        if (turns && simulation_.turn()) model_.refresh();
    }

    void change() {
        if (chance_.oneIn(3)) setChoices(invention_.choices());
        if (chance_.oneIn(4)) setSettings(invention_.settings());
        if (chance_.oneIn(5)) setMachine(invention_.machine());
        if (chance_.oneIn(5)) setHost();
        if (chance_.oneIn(6)) setHardware(invention_.volume());
        if (chance_.oneIn(10)) setWord(invention_.word());
        if (chance_.oneIn(5)) post();
        setRegisters(!chance_.oneIn(20));
        now_.hasRoom = !chance_.oneIn(20);
    }

    void write(const char* path, const FileContent& content) {
        const fs::path file = device_.below(path);
        if (content.kind == Kind::absent) {
            fs::remove(file);
        } else {
            const bool isDictionary = content.kind == Kind::dictionary;
            standin::writeFileAtomically(
                file,
                isDictionary ? standin::writePropertyList(dictionaryOf(content)) : noDictionary);
        }
    }
    void setChoices(const FileContent& content) {
        write(choicesPath, content);
        now_.choices = content;
    }
    void setSettings(const FileContent& content) {
        write(settingsPath, content);
        now_.settings = content;
    }
    void setHardware(std::optional<float> volume) {
        now_.volume = volume;
        now_.isMuted = false;
        const Dictionary volumes = {{"Ringtone", double{volume.value_or(0)}}};
        const Dictionary state = {{"ringer-muted", false}, {"volumes", volumes}};
        standin::writeFileAtomically(device_.below(DeviceRoot::hardwarePath),
                                     volume ? standin::writePropertyList(state) : noDictionary);
    }
    void setMachine(const std::string& machine) { device_.machine = now_.machine = machine; }
    void setHost() { device_.host = now_.host = invention_.host(); }
    void setRegisters(bool registers) {
        device_.tokens.refuse(!registers);
        now_.registers = registers;
    }
    auto& name() { return *device_.notifications.findOrAdd(ringerState); }
    void setWord(std::uint64_t word) { name().state = now_.word = word; }
    void post() {
        device_.notifications.post(name());
        now_.isPosted = true;
    }

    /// Something that others do while the switch works; the same for the model in outside_.
    std::function<void()> meddling() {
        const std::size_t kind = chance_.below(4);
        const std::uint64_t word = invention_.word();
        const std::string& machine = invention_.machine();
        outside_ = [=](Situation& situation) {
            if (kind < 2) situation.isPosted = true;
            if (kind == 1) situation.word = word;
            if (kind == 2) situation.machine = machine;
        };
        return [=, this] {
            if (kind == 1) name().state = word;
            if (kind < 2) device_.notifications.post(name());
            if (kind == 2) device_.machine = machine;
        };
    }

    void expectContent(const char* path, const FileContent& content) {
        const fs::path file = device_.below(path);
        const auto read = standin::readDictionary(file);
        ASSERT_EQ(fs::exists(file), content.kind != Kind::absent) << path;
        ASSERT_EQ(read.has_value(), content.kind == Kind::dictionary) << path;
        if (read) {
            ASSERT_EQ(*read, dictionaryOf(content)) << path;
        }
    }

    void expectSituation() {
        ASSERT_NO_FATAL_FAILURE(expectContent(choicesPath, now_.choices));
        ASSERT_NO_FATAL_FAILURE(expectContent(settingsPath, now_.settings));
        ASSERT_EQ(device_.hardware.volume("Ringtone"), now_.volume);
        ASSERT_EQ(device_.hardware.isRingerMuted(), now_.isMuted);
        ASSERT_EQ(name().state.load(), now_.word);
        ASSERT_EQ(device_.clock.now(), now_.time);
        ASSERT_EQ(device_.tokens.count(), 0U);
        ASSERT_EQ(exported("GLOBAL_vibrateWhenRinging"), model_.vibratesWhenRinging());
        ASSERT_EQ(exported("GLOBAL_vibrateWhenSilent"), model_.vibratesWhenSilent());
    }
    bool exported(const char* flag) const {
        return *static_cast<const signed char*>(device_.framework.symbol(flag)) != 0;
    }

    TemporaryFolder folder_;
    Situation now_;
    std::vector<TraceRecord> trace_;
    std::size_t meddlesAt_ = 0;
    std::function<void()> meddle_;
    std::function<void(Situation&)> outside_;
    Simulation simulation_{trace_, now_};
    SwitchModel model_{simulation_};
    Chance chance_{1};
    Invention invention_{chance_};
    Device device_{{.root = folder_.path() / "root",
                    .machine = "iPhone6,1",
                    .host = {},
                    .clock = standin::Clock::Kind::virtualTime,
                    .openModule = moduleOpener()}};
};

/// How many steps; QUILLET_YEARS_STEPS may ask for more.
long steps() {
    const char* const asked = std::getenv("QUILLET_YEARS_STEPS");
    return asked == nullptr ? 2000 : std::strtol(asked, nullptr, 10);
}

TEST_F(Years, GoByAsTheModelSaysAndLeaveNothingBehind) {
    const long count = steps();
    const long warm = count / 10;
    Holdings before{};
    for (long i = 0; i < count; ++i) {
        if (i == warm) {
            makeNew();
            before = holdings();
        }
        SCOPED_TRACE("step " + std::to_string(i));
        ASSERT_NO_THROW(step());
        if (HasFatalFailure()) return;
    }
    makeNew();
    const Holdings after = holdings();
    // The allocator counts as taken what it keeps for the next request of the same size.
    constexpr std::size_t kept = 32768;
    EXPECT_LE(after.memory, before.memory + kept);
    EXPECT_EQ(after.descriptors, before.descriptors);
    EXPECT_EQ(after.mappings, before.mappings);
    EXPECT_EQ(after.tokens, before.tokens);
    EXPECT_EQ(after.observers, before.observers);
    EXPECT_EQ(after.instances, before.instances);
    RecordProperty("memory", static_cast<int>(after.memory));
}

}  // namespace
}  // namespace quillet::test
