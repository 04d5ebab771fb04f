// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <string_view>

namespace quillet::standin {

/// A folder that stands for a device's "/". Nothing outside it is ever touched.
class DeviceRoot {
public:
    /// Where the stand-in keeps its own files: the notification service's table and what
    /// Hardware keeps. Paths of the device.
    static constexpr char notificationsPath[] = "/var/run/notifications";
    static constexpr char hardwarePath[] = "/var/db/hardware.plist";

    /// Takes the folder at `path`. One that is absent or empty is filled with a new phone's files,
    /// its ringer on. Throws std::runtime_error when the folder cannot be used; one that holds
    /// something other than a device is left as it is.
    explicit DeviceRoot(const std::filesystem::path& path);

    /// Where `devicePath`, an absolute path of the device, lies on this machine.
    std::filesystem::path below(std::string_view devicePath) const;

private:
    std::filesystem::path path_;
};

}  // namespace quillet::standin
