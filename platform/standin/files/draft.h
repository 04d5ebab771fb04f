// SPDX-License-Identifier: MIT
#pragma once

#include <sys/types.h>

#include <filesystem>
#include <string>

#include "platform/standin/files/descriptor.h"

namespace quillet::standin {

/// A file or folder that its maker fills beside its place and then puts there whole. One that was
/// not published is removed.
///
/// While its maker lives it is locked, see flock(2). What is not locked was left by a maker that
/// died, and goes when the next draft is made in the same folder.
class Draft {
public:
    enum class Kind { file, folder };

    /// Makes an empty one in `folder`, with what of `mode` the process's umask leaves. When it
    /// cannot be made, isMade() is false and errno says why.
    Draft(const std::filesystem::path& folder, Kind kind, mode_t mode);
    ~Draft();
    Draft(const Draft&) = delete;
    Draft& operator=(const Draft&) = delete;

    bool isMade() const { return file_.isOpen(); }
    const std::string& path() const { return path_; }
    /// Open for writing, or for reading if it is a folder. Owned by the draft.
    int descriptor() const { return file_.number(); }

    /// Puts it at `place`, in the same folder, in place of what is there. What it holds is on the
    /// disk before what was there may go, and so is its new name when this returns, if the system
    /// can say so; what a folder holds is for the caller to flush. False, and errno says why, when
    /// that fails: `place` then is as it was.
    bool publish(const std::filesystem::path& place);

    /// Puts it at `place`, in the same folder, and what is there in its own place, in one step;
    /// that goes with the draft. What a folder holds is for the caller to flush. False, and errno
    /// says why, when that fails: both then are as they were.
    bool exchange(const std::filesystem::path& place);

    /// Removes the drafts in `folder` whose makers have died.
    static void removeAbandoned(const std::string& folder) noexcept;

private:
    // Texts, which no use takes apart.
    std::string folder_;
    std::string path_;
    Descriptor file_;
    bool isPublished_ = false;
};

/// Has what was written to an open file or folder reach the disk. False when that fails; a file
/// system that knows no such thing succeeds.
bool flush(int descriptor);

}  // namespace quillet::standin
