// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <string_view>

namespace quillet::standin {

/// A folder that stands for a device's "/". Nothing outside it is ever touched.
class DeviceRoot {
public:
    /// Where the stand-in keeps its own files: the notification service's table, what Hardware
    /// keeps, what the device is, and the journal. Paths of the device.
    static constexpr char notificationsPath[] = "/var/run/notifications";
    static constexpr char hardwarePath[] = "/var/db/hardware.plist";
    static constexpr char factsPath[] = "/var/db/device.plist";
    static constexpr char journalPath[] = "/var/db/journal";
    /// The name of the notification service whose word is 0 while the ringer is muted.
    static constexpr char ringerStateName[] = "com.apple.springboard.ringerstate";
    /// The library that the device has while the file is there.
    static constexpr char graphicsServicesPath[] =
        "/System/Library/PrivateFrameworks/GraphicsServices.framework/GraphicsServices";

    /// Takes the device in the folder at `path` and changes nothing. Throws std::runtime_error when
    /// there is none, or when it has lost its notification service's table.
    explicit DeviceRoot(const std::filesystem::path& path);

    const std::filesystem::path& path() const { return path_; }

    /// Where `devicePath`, an absolute path of the device, lies on this machine.
    std::filesystem::path below(std::string_view devicePath) const {
        return below(path_, devicePath);
    }

    /// The same for the device in the folder `root`.
    static std::filesystem::path below(const std::filesystem::path& root,
                                       std::string_view devicePath);

    /// Whether the folder at `path` is, or was, a device: a file of the stand-in's own is there.
    static bool isDevice(const std::filesystem::path& path);

    /// `path` as it is from wherever: absolute, free of links as far as it exists, without a slash
    /// at its end. Throws std::runtime_error when it cannot be followed.
    static std::filesystem::path locate(const std::filesystem::path& path);

private:
    std::filesystem::path path_;
};

}  // namespace quillet::standin
