// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>

#include "platform/standin/files/draft.h"

namespace quillet::standin {

/// A folder beside its place, filled by its maker and then put there whole. One that was not
/// published is removed with all that it holds; see Draft for one whose maker died.
class DraftFolder {
public:
    /// Makes an empty folder beside `place`, whose parent must be there. Throws std::system_error.
    explicit DraftFolder(const std::filesystem::path& place);

    const std::filesystem::path& path() const { return draft_.path(); }

    /// Puts the folder in its place, where nothing or an empty folder may be, when all that it
    /// holds is on the disk. A folder that is not empty, made by somebody faster, stays, and the
    /// draft goes. Throws std::system_error.
    void publish();

private:
    std::filesystem::path place_;
    Draft draft_;
};

}  // namespace quillet::standin
