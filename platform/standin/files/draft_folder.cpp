// SPDX-License-Identifier: MIT
#include "platform/standin/files/draft_folder.h"

#include <fcntl.h>

#include <cerrno>
#include <system_error>

namespace quillet::standin {

namespace fs = std::filesystem;

namespace {

[[noreturn]] void throwError(const fs::path& path) {
    throw std::system_error(errno, std::generic_category(), path.string());
}

/// Has all that is below a folder reach the disk.
void flushBelow(const fs::path& folder) {
    for (const auto& entry : fs::recursive_directory_iterator{folder}) {
        const fs::path& path = entry.path();
        const Descriptor file{
            uninterrupted([&] { return open(path.c_str(), O_RDONLY | O_CLOEXEC); })};
        if (!file.isOpen() || !flush(file.number())) throwError(path);
    }
}

}  // namespace

DraftFolder::DraftFolder(const fs::path& place)
    : place_{place}, draft_{place.parent_path(), Draft::Kind::folder, 0777} {
    if (!draft_.isMade()) throwError(place);
}

bool DraftFolder::publish() {
    flushBelow(path());
    if (draft_.publish(place_)) return true;
    if (errno != ENOTEMPTY && errno != EEXIST) throwError(place_);
    return false;
}

void DraftFolder::exchange() {
    flushBelow(path());
    if (!draft_.exchange(place_)) throwError(place_);
}

}  // namespace quillet::standin
