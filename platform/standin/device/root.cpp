// SPDX-License-Identifier: MIT
#include "platform/standin/device/root.h"

#include <stdlib.h>

#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <string>
#include <system_error>

#include "platform/standin/device/hardware.h"
#include "platform/standin/notifications/notification_table.h"
#include "platform/standin/plist/property_list.h"

namespace quillet::standin {

namespace fs = std::filesystem;

namespace {

constexpr char preferencesFolder[] = "var/mobile/Library/Preferences";
constexpr char libraryFolder[] = "System/Library/PrivateFrameworks/GraphicsServices.framework";

[[noreturn]] void fail(const fs::path& path, const std::string& why) {
    throw std::runtime_error(path.string() + ": " + why);
}

void write(const fs::path& path, const std::string& bytes) {
    fs::create_directories(path.parent_path());
    if (!writeFileAtomically(path, bytes)) fail(path, "cannot be written");
}

/// A phone as it comes out of its box, with the vibration left to the switch.
void fill(const fs::path& root) {
    write(root / preferencesFolder / "com.apple.springboard.plist",
          writePropertyList(Dictionary{
              {"SBLockScreenClock", true}, {"ring-vibrate", true}, {"silent-vibrate", true}}));
    write(root / preferencesFolder / "com.velk.switch.ringer.plist",
          writePropertyList(Dictionary{{"ios-vibrate-pattern", false},
                                       {"vibrate-when-off", true},
                                       {"vibrate-when-on", false}}));
    write(root / libraryFolder / "GraphicsServices", "");

    const fs::path hardware = root / fs::path{DeviceRoot::hardwarePath}.relative_path();
    fs::create_directories(hardware.parent_path());
    if (!Hardware::create(hardware)) fail(hardware, "cannot be written");

    const fs::path table = root / fs::path{DeviceRoot::notificationsPath}.relative_path();
    fs::create_directories(table.parent_path());
    NotificationTable::create(table);
    NotificationTable{table}.findOrAdd("com.apple.springboard.ringerstate")->state = 1;
}

/// Fills a folder beside `path` and puts it there whole, so that of several processes that make
/// one device each finds a complete one.
void make(const fs::path& path) {
    fs::create_directories(path.parent_path());
    std::string name = path.string() + ".XXXXXX";
    if (mkdtemp(name.data()) == nullptr) fail(path, std::strerror(errno));
    fs::permissions(name, fs::perms{0755});
    std::error_code error;
    try {
        fill(name);
        fs::rename(name, path, error);
    } catch (...) {
        fs::remove_all(name);
        throw;
    }
    if (error) fs::remove_all(name);
    // Another process may have been faster: its device is as good.
    const bool isThere = error == std::errc::directory_not_empty || error == std::errc::file_exists;
    if (error && !isThere) fail(path, error.message());
}

}  // namespace

DeviceRoot::DeviceRoot(const fs::path& path) : path_{fs::weakly_canonical(fs::absolute(path))} {
    if (!path_.has_filename()) path_ = path_.parent_path();
    if (fs::exists(path_) && !fs::is_directory(path_)) fail(path_, "not a folder");
    if (!fs::exists(path_) || fs::is_empty(path_)) make(path_);
    if (!fs::is_regular_file(below(notificationsPath))) {
        fail(path_, "not a device root (and not empty, so not made into one)");
    }
}

fs::path DeviceRoot::below(std::string_view devicePath) const {
    // Normal first: as on a device, nothing lies above "/".
    return path_ / (fs::path{"/"} / devicePath).lexically_normal().relative_path();
}

}  // namespace quillet::standin
