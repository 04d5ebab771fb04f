// SPDX-License-Identifier: MIT
#include "platform/standin/device/root.h"

#include <stdexcept>

namespace quillet::standin {

namespace fs = std::filesystem;

DeviceRoot::DeviceRoot(const fs::path& path) : path_{locate(path)} {
    if (fs::exists(path_) && !fs::is_directory(path_)) {
        throw std::runtime_error(path_.string() + ": not a folder");
    }
    if (!fs::is_regular_file(below(notificationsPath))) {
        throw std::runtime_error(path_.string() +
                                 ": not a device root (and not empty, so not made into one)");
    }
}

fs::path DeviceRoot::below(const fs::path& root, std::string_view devicePath) {
    // Normal first: as on a device, nothing lies above "/".
    return root / (fs::path{"/"} / devicePath).lexically_normal().relative_path();
}

fs::path DeviceRoot::locate(const fs::path& path) {
    fs::path located = fs::weakly_canonical(fs::absolute(path));
    return located.has_filename() ? located : located.parent_path();
}

}  // namespace quillet::standin
