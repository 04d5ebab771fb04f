// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <cstddef>
#include <filesystem>

namespace quillet::standin {

/// The first bytes of an open file as memory, shared with every process that maps them, for reading
/// and writing. See mmap(2).
///
/// A file can be cut off, or its disk be full, while it is mapped; touching what is not there any
/// more would end the process with SIGBUS. From that moment on the memory is this process's own
/// instead and begins as zeros, and the mapping says so. What handles the signal is set when the
/// first mapping is made; faults elsewhere go to what handled it before.
class Mapping {
public:
    /// `size` in bytes, at least 1. It may reach beyond the end of the file: that part may be
    /// touched once the file has grown there. The file may be closed afterwards. Throws
    /// std::system_error, which names `path`.
    Mapping(int descriptor, std::size_t size, const std::filesystem::path& path);
    ~Mapping();
    Mapping(const Mapping&) = delete;
    Mapping& operator=(const Mapping&) = delete;

    /// Owned by the mapping.
    void* memory() const { return memory_; }

    /// Whether the memory is the file no more.
    bool isLost() const { return isLost_.load(); }

    /// Puts zeros in place of the mapping that holds `address`. False when none does. May be called
    /// by a signal handler.
    static bool replaceAt(const void* address);

private:
    bool holds(const void* address) const;
    bool replace();

    std::size_t size_;
    void* memory_;
    std::atomic<bool> isLost_ = false;
};

}  // namespace quillet::standin
