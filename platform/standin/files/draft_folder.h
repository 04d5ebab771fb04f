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

    std::filesystem::path path() const { return draft_.path(); }

    /// Puts the folder in its place, where nothing or an empty folder may be, when all that it
    /// holds is on the disk. False when a folder that is not empty, made by somebody faster, is
    /// there: it stays, and the draft goes. Throws std::system_error.
    bool publish();

    /// Puts the folder in the place of the one that is there, in one step, when all that it holds
    /// is on the disk; what was there goes with the draft. Throws std::system_error.
    void exchange();

private:
    std::filesystem::path place_;
    Draft draft_;
};

}  // namespace quillet::standin
