// SPDX-License-Identifier: MIT
#pragma once

#include <sys/mman.h>

#include <atomic>
#include <stdexcept>

namespace quillet::test {

/// A number, first 0, in memory that is shared with the processes that are forked afterwards.
template <class Number>
class SharedNumber {
public:
    SharedNumber()
        : memory_{mmap(nullptr, sizeof(std::atomic<Number>), PROT_READ | PROT_WRITE,
                       MAP_SHARED | MAP_ANONYMOUS, -1, 0)} {
        if (memory_ == MAP_FAILED) throw std::runtime_error("no shared memory");
    }
    ~SharedNumber() { munmap(memory_, sizeof(std::atomic<Number>)); }
    SharedNumber(const SharedNumber&) = delete;
    SharedNumber& operator=(const SharedNumber&) = delete;

    std::atomic<Number>& operator*() const { return *static_cast<std::atomic<Number>*>(memory_); }

private:
    void* memory_;
};

}  // namespace quillet::test
