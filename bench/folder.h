// SPDX-License-Identifier: MIT
#pragma once

#include <stdlib.h>

#include <filesystem>
#include <stdexcept>
#include <string>

namespace quillet::bench {

/// A new folder below TMPDIR, which goes with it.
class Folder {
public:
    Folder() {
        std::string pattern = std::filesystem::temp_directory_path() / "quillet-bench-XXXXXX";
        if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("cannot make " + pattern);
        path_ = pattern;
    }
    ~Folder() { std::filesystem::remove_all(path_); }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    const std::filesystem::path& path() const { return path_; }

private:
    std::filesystem::path path_;
};

}  // namespace quillet::bench
