// SPDX-License-Identifier: MIT
#include "tests/support/temporary_folder.h"

#include <stdlib.h>
#include <unistd.h>

#include <stdexcept>
#include <string>

namespace quillet::test {

namespace {

/// In memory where the system has such a place: files that replace others are costly on a disk.
std::filesystem::path parent() {
    const std::filesystem::path memory = "/dev/shm";
    return access(memory.c_str(), W_OK) == 0 ? memory : std::filesystem::temp_directory_path();
}

}  // namespace

TemporaryFolder::TemporaryFolder() {
    std::string name = parent() / "quillet.XXXXXX";
    if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary folder");
    path_ = name;
}

TemporaryFolder::~TemporaryFolder() { std::filesystem::remove_all(path_); }

}  // namespace quillet::test
