// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tests/model/world.h"

namespace quillet::test {

/// The switch's behaviour told a second time, and independently: every call that it makes, in its
/// order, from what the world answers.
class SwitchModel {
public:
    explicit SwitchModel(World& world) : world_{world} {}

    /// The loading of the bundle.
    void load();
    /// A question for the state; whether it is on.
    bool isOn();
    void apply(std::int32_t state);
    /// The panel is told, and asks for the state.
    void refresh();

    /// The two values that are exported while vibration is held off.
    bool vibratesWhenRinging() const { return vibratesWhenRinging_; }
    bool vibratesWhenSilent() const { return vibratesWhenSilent_; }

private:
    using Arguments = std::vector<std::optional<standin::TraceValue>>;

    /// A call with an answer, and one without.
    Reply ask(const std::string& receiver, const std::string& operation, Arguments arguments = {});
    void tell(const std::string& receiver, const std::string& operation, Arguments arguments = {});

    void loadPreferences();
    /// What stands under `key` in a dictionary, as a flag; nothing when nothing does.
    std::optional<bool> flag(const std::string& dictionary, const std::string& key);
    void put(const std::string& message, const standin::TraceValue& value, const std::string& key);
    void holdVibrationOff();
    void putVibrationBack();
    void writeVibration(bool isThere, bool whenRinging, bool whenSilent);
    void announceAndWait();
    bool isIPod();
    void setVolume(double volume);
    void saveAndZeroVolume();
    void restoreVolume();
    void show(bool ringerOn);
    void mute(bool ringerOn, bool hasClass);

    World& world_;
    bool systemVibrates_ = false;
    bool vibrateWhenOff_ = true;
    bool vibrateWhenOn_ = false;
    bool vibratesWhenRinging_ = false;
    bool vibratesWhenSilent_ = false;
};

}  // namespace quillet::test
