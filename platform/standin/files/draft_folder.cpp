// SPDX-License-Identifier: MIT
#include "platform/standin/files/draft_folder.h"

#include <stdlib.h>
#include <sys/stat.h>

#include <cerrno>
#include <string>
#include <system_error>
#include <utility>

namespace quillet::standin {

namespace fs = std::filesystem;

DraftFolder::DraftFolder(const fs::path& place) : place_{place} {
    std::string name = place.string() + ".XXXXXX";
    if (mkdtemp(name.data()) == nullptr) {
        throw std::system_error(errno, std::generic_category(), place.string());
    }
    path_ = std::move(name);
    // As open to others as a folder that is made in the ordinary way.
    fs::permissions(path_, fs::perms{0755});
}

DraftFolder::~DraftFolder() {
    std::error_code ignored;
    if (!path_.empty()) fs::remove_all(path_, ignored);
}

void DraftFolder::publish() {
    std::error_code error;
    fs::rename(path_, place_, error);
    if (!error) {
        path_.clear();
    } else if (error != std::errc::directory_not_empty && error != std::errc::file_exists) {
        throw std::system_error(error, place_.string());
    }
}

}  // namespace quillet::standin
