// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <optional>
#include <string_view>

#include "platform/standin/plist/value.h"

namespace quillet::standin {

/// What the device keeps outside its ordinary files: the volumes and whether the ringer is muted.
/// It is kept in a property list, shared by every process of the device, and read at each use.
class Hardware {
public:
    /// What the file of a new device holds.
    static Dictionary newState();

    explicit Hardware(std::filesystem::path path) : path_{std::move(path)} {}

    /// From 0.0 to 1.0; nothing when there is no such category.
    std::optional<float> volume(std::string_view category) const;
    /// Brings `volume` into its range, 0.0 if it is no number. False when there is no such
    /// category, somebody else keeps the file locked or it cannot be written.
    bool setVolume(std::string_view category, float volume);

    bool isRingerMuted() const;
    /// A file that cannot be read, or that somebody else keeps locked, is left as it is.
    void setRingerMuted(bool muted);

private:
    /// Nothing when the file cannot be read.
    std::optional<Dictionary> read() const;

    std::filesystem::path path_;
};

}  // namespace quillet::standin
