// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>

namespace quillet::test {

/// An empty folder of its own, removed with all it holds when the object goes.
class TemporaryFolder {
public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::filesystem::path& path() const { return path_; }

private:
    std::filesystem::path path_;
};

}  // namespace quillet::test
