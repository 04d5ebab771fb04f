// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <filesystem>

namespace quillet::standin {

/// The first bytes of an open file as memory, shared with every process that maps them, for reading
/// and writing. See mmap(2).
class Mapping {
public:
    /// `size` in bytes, at least 1. The file may be closed afterwards. Throws std::system_error,
    /// which names `path`.
    Mapping(int descriptor, std::size_t size, const std::filesystem::path& path);
    ~Mapping();
    Mapping(const Mapping&) = delete;
    Mapping& operator=(const Mapping&) = delete;

    /// Owned by the mapping.
    void* memory() const { return memory_; }

private:
    std::size_t size_;
    void* memory_;
};

}  // namespace quillet::standin
