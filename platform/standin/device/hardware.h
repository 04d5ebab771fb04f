// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "platform/standin/device/complaints.h"
#include "platform/standin/plist/value.h"

namespace quillet::standin {

/// What the device keeps outside its ordinary files: the volumes and whether the ringer is muted.
/// It is kept in a property list, shared by every process of the device, and read at each use.
class Hardware {
public:
    /// What the file of a new device holds.
    static Dictionary newState();

    /// `complaints`, which hears why the file could not be read or written, must outlive this.
    explicit Hardware(std::filesystem::path path, Complaints* complaints = nullptr)
        : path_{std::move(path)}, complaints_{complaints} {}

    /// Makes the file again if it is missing, as that of a new device, muted or not, and complains.
    void makeAgain(bool muted);

    /// From 0.0 to 1.0; nothing when there is no such category.
    std::optional<float> volume(std::string_view category) const;
    /// Brings `volume` into its range, 0.0 if it is no number. False when there is no such
    /// category, somebody else keeps the file locked or it cannot be written.
    bool setVolume(std::string_view category, float volume);

    bool isRingerMuted() const;
    /// False when the file cannot be read or written, or when somebody else keeps it locked; it is
    /// left as it is.
    bool setRingerMuted(bool muted);

private:
    /// Nothing when the file cannot be read.
    std::optional<Dictionary> read() const;
    bool write(const Dictionary& state) const;
    void complain(const std::filesystem::path& file, const std::string& complaint) const;

    std::filesystem::path path_;
    Complaints* complaints_;
};

}  // namespace quillet::standin
