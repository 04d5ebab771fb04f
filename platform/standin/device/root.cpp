// SPDX-License-Identifier: MIT
#include "platform/standin/device/root.h"

#include <algorithm>
#include <stdexcept>
#include <string>
#include <system_error>

namespace quillet::standin {

namespace fs = std::filesystem;

namespace {

/// Files that no other folder has.
constexpr const char* own[] = {DeviceRoot::notificationsPath, DeviceRoot::hardwarePath,
                               DeviceRoot::factsPath};

[[noreturn]] void refuseRoot(const fs::path& path, const std::string& reason) {
    throw std::runtime_error(path.string() + ": " + reason);
}

}  // namespace

DeviceRoot::DeviceRoot(const fs::path& path) : path_{locate(path)} {
    std::error_code error;
    const auto status = fs::status(path_, error);
    if (fs::exists(status) && !fs::is_directory(status)) refuseRoot(path_, "not a folder");
    const auto table = fs::status(below(notificationsPath), error);
    if (table.type() == fs::file_type::none) {
        refuseRoot(path_, "the device in it cannot be looked at: " + error.message());
    }
    if (fs::is_regular_file(table)) return;
    if (!isDevice(path_))
        refuseRoot(path_, "not a device root (and not empty, so not made into one)");
    refuseRoot(path_, std::string{"the device has lost "} + notificationsPath +
                          ", the state of its ringer with it; it can be erased");
}

bool DeviceRoot::isDevice(const fs::path& path) {
    return std::ranges::any_of(own, [&](const char* file) {
        std::error_code ignored;
        return fs::is_regular_file(below(path, file), ignored);
    });
}

fs::path DeviceRoot::below(const fs::path& root, std::string_view devicePath) {
    // Normal first: as on a device, nothing lies above "/".
    return root / (fs::path{"/"} / devicePath).lexically_normal().relative_path();
}

fs::path DeviceRoot::locate(const fs::path& path) {
    std::error_code error;
    fs::path located = fs::absolute(path, error);
    if (!error) located = fs::weakly_canonical(located, error);
    if (error) refuseRoot(path, "cannot be followed: " + error.message());
    return located.has_filename() ? located : located.parent_path();
}

}  // namespace quillet::standin
