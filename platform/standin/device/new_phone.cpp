// SPDX-License-Identifier: MIT
#include "platform/standin/device/new_phone.h"

#include <cerrno>
#include <stdexcept>
#include <system_error>

#include "platform/standin/device/hardware.h"
#include "platform/standin/device/root.h"
#include "platform/standin/device/vibration_settings.h"
#include "platform/standin/files/draft.h"
#include "platform/standin/files/draft_folder.h"
#include "platform/standin/files/file.h"
#include "platform/standin/notifications/notification_table.h"
#include "platform/standin/plist/property_list.h"

namespace quillet::standin {

namespace fs = std::filesystem;

namespace {

const NewFile springBoardPreferences = {VibrationSettings::path,
                                        {{"SBLockScreenClock", true},
                                         {VibrationSettings::ringKey, true},
                                         {VibrationSettings::silentKey, true}}};

/// Where a file of the device lies, in a folder that is there.
fs::path place(const fs::path& root, const std::string& devicePath) {
    fs::path path = DeviceRoot::below(root, devicePath);
    fs::create_directories(path.parent_path());
    return path;
}

void write(const fs::path& path, const std::string& bytes) {
    if (!writeFileAtomically(path, bytes)) {
        throw std::system_error(errno, std::generic_category(), path.string());
    }
}

void write(const fs::path& root, const NewFile& file) {
    write(place(root, file.path), writePropertyList(file.content));
}

void fill(const fs::path& root, const std::vector<NewFile>& files, const DeviceFacts& facts) {
    write(root, springBoardPreferences);
    write(root, {DeviceRoot::hardwarePath, Hardware::newState()});
    write(root, {DeviceRoot::factsPath, toDictionary(facts)});
    for (const NewFile& file : files) write(root, file);
    write(place(root, DeviceRoot::graphicsServicesPath), "");

    NotificationTable::create(place(root, DeviceRoot::notificationsPath),
                              {{DeviceRoot::ringerStateName, 1}});
}

[[noreturn]] void refusePlace(const fs::path& path, const std::string& reason) {
    throw std::runtime_error(path.string() + ": " + reason);
}

/// Whether a phone may be put there: nothing is, or an empty folder.
bool isFree(const fs::path& path) {
    std::error_code error;
    const auto status = fs::status(path, error);
    const bool isFree = status.type() == fs::file_type::not_found ||
                        (fs::is_directory(status) && fs::is_empty(path, error));
    if (error && fs::exists(status)) refusePlace(path, "cannot be looked at: " + error.message());
    return isFree;
}

/// What the system says when it cannot make a phone is told in words of our own.
[[noreturn]] void refusePlace(const fs::path& path, const std::error_code& error) {
    const bool isMount = error == std::errc::device_or_resource_busy;
    const std::string reason =
        isMount ? "a file system is mounted there; name a folder in it" : error.message();
    refusePlace(path, "no device can be made of it: " + reason);
}

}  // namespace

FoundPhone makeNewPhone(const fs::path& root, const std::vector<NewFile>& files,
                        const DeviceFacts& facts) {
    const fs::path path = DeviceRoot::locate(root);
    Draft::removeAbandoned(path.parent_path());
    if (!isFree(path)) return {path};
    try {
        fs::create_directories(path.parent_path());
        DraftFolder draft{path};
        fill(draft.path(), files, facts);
        return {path, draft.publish()};
    } catch (const std::system_error& error) {
        refusePlace(path, error.code());
    }
}

void eraseDevice(const fs::path& root, const std::vector<NewFile>& files,
                 const DeviceFacts& facts) {
    const fs::path path = DeviceRoot::locate(root);
    if (!DeviceRoot::isDevice(path)) refusePlace(path, "no device is there");
    try {
        DraftFolder draft{path};
        fill(draft.path(), files, facts);
        draft.exchange();
    } catch (const std::system_error& error) {
        refusePlace(path, error.code());
    }
}

}  // namespace quillet::standin
