// SPDX-License-Identifier: MIT
#include "platform/standin/device/new_phone.h"

#include <stdexcept>

#include "platform/standin/device/hardware.h"
#include "platform/standin/device/root.h"
#include "platform/standin/files/draft.h"
#include "platform/standin/files/draft_folder.h"
#include "platform/standin/files/file.h"
#include "platform/standin/notifications/notification_table.h"
#include "platform/standin/plist/property_list.h"

namespace quillet::standin {

namespace fs = std::filesystem;

namespace {

const NewFile springBoardPreferences = {
    "/var/mobile/Library/Preferences/com.apple.springboard.plist",
    {{"SBLockScreenClock", true}, {"ring-vibrate", true}, {"silent-vibrate", true}}};

/// Where a file of the device lies, in a folder that is there.
fs::path place(const fs::path& root, const std::string& devicePath) {
    fs::path path = DeviceRoot::below(root, devicePath);
    fs::create_directories(path.parent_path());
    return path;
}

void write(const fs::path& path, const std::string& bytes) {
    if (!writeFileAtomically(path, bytes)) {
        throw std::runtime_error(path.string() + ": cannot be written");
    }
}

void write(const fs::path& root, const NewFile& file) {
    write(place(root, file.path), writePropertyList(file.content));
}

void fill(const fs::path& root, const std::vector<NewFile>& files) {
    write(root, springBoardPreferences);
    write(root, {DeviceRoot::hardwarePath, Hardware::newState()});
    for (const NewFile& file : files) write(root, file);
    write(place(root, DeviceRoot::graphicsServicesPath), "");

    NotificationTable::create(place(root, DeviceRoot::notificationsPath),
                              {{"com.apple.springboard.ringerstate", 1}});
}

}  // namespace

fs::path makeNewPhone(const fs::path& root, const std::vector<NewFile>& files) {
    const fs::path path = DeviceRoot::locate(root);
    Draft::removeAbandoned(path.parent_path());
    if (fs::exists(path) && !(fs::is_directory(path) && fs::is_empty(path))) return path;
    fs::create_directories(path.parent_path());
    DraftFolder draft{path};
    fill(draft.path(), files);
    draft.publish();
    return path;
}

}  // namespace quillet::standin
