// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/standin/device/trace.h"

namespace quillet {

/// Something that a flip does, as people would tell it.
struct Step {
    enum class Kind {
        /// A preference as it was read, before anything is done: `label` is its key.
        decision,
        deed,
        waitBegins,
        waitEnds,
    };
    Kind kind = Kind::deed;
    /// In seconds, of the trace.
    double time = 0;
    /// How many waits it is done in.
    int depth = 0;
    /// In a word or two: "settings off".
    std::string label;
    /// In full: "vibration settings off (before: ring on, silent on), announced".
    std::string text;
};

/// Makes steps of the records of a trace, which are to be handed over in order.
class StepReader {
public:
    /// The steps that the call completes.
    std::vector<Step> begin(const standin::TraceRecord& record);
    /// Those that its end completes.
    std::vector<Step> end(const standin::TraceRecord& record, double duration);

private:
    using Record = standin::TraceRecord;
    using Handler = void (StepReader::*)(const Record&);
    /// SpringBoard's two vibration settings: nothing stands for one that is absent.
    struct Settings {
        bool isFile = false;
        bool isWritten = false;
        std::optional<bool> ring;
        std::optional<bool> silent;
        std::optional<bool>* find(const std::string& key);
    };

    static Handler handlerOf(const std::string& operation);
    void openFile(const Record& record);
    void lookUp(const Record& record);
    void readFlag(const Record& record);
    void changeSetting(const Record& record);
    void keepVolume(const Record& record);
    void writeFile(const Record& record);
    void announce(const Record& record);
    void wait(const Record& record);
    void takeToken(const Record& record);
    void storeState(const Record& record);
    void readState(const Record& record);
    void post(const Record& record);
    void showIndicator(const Record& record);
    void mute(const Record& record);
    void setVolume(const Record& record);
    void playSound(const Record& record);

    void decide(const Record& record, const std::string& key, std::optional<bool> value);
    void add(const Record& record, std::string label, std::string text);

    std::vector<Step> steps_;
    /// The key that was looked up last, until its value is read.
    std::string key_;
    Settings before_;
    Settings written_;
    bool areSettingsOff_ = false;
    std::string keptVolume_;
    std::optional<bool> stored_;
    std::optional<bool> answered_;
};

}  // namespace quillet
