// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <memory>
#include <vector>

namespace quillet::standin {

/// Memory for objects that live as long as the device.
class Storage {
public:
    /// `size` bytes, all zero, owned by the storage.
    void* allocate(std::size_t size) {
        return blocks_.emplace_back(std::make_unique<std::byte[]>(size)).get();
    }

private:
    std::vector<std::unique_ptr<std::byte[]>> blocks_;
};

}  // namespace quillet::standin
