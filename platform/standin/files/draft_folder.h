// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>

namespace quillet::standin {

/// A folder beside its place, filled by its maker and then put there whole. One that was not
/// published is removed with all that it holds.
class DraftFolder {
public:
    /// Makes an empty folder beside `place`, whose parent must be there. Throws std::system_error.
    explicit DraftFolder(const std::filesystem::path& place);
    ~DraftFolder();
    DraftFolder(const DraftFolder&) = delete;
    DraftFolder& operator=(const DraftFolder&) = delete;

    const std::filesystem::path& path() const { return path_; }

    /// Puts the folder in its place, where nothing or an empty folder may be. A folder that is not
    /// empty, made by somebody faster, stays, and the draft goes. Throws std::system_error.
    void publish();

private:
    std::filesystem::path place_;
    std::filesystem::path path_;
};

}  // namespace quillet::standin
