// SPDX-License-Identifier: MIT
#include "platform/standin/files/mapping.h"

#include <sys/mman.h>

#include <cerrno>
#include <system_error>

namespace quillet::standin {

Mapping::Mapping(int descriptor, std::size_t size, const std::filesystem::path& path)
    : size_{size}, memory_{mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0)} {
    if (memory_ == MAP_FAILED) {
        throw std::system_error(errno, std::generic_category(), path.string());
    }
}

Mapping::~Mapping() { munmap(memory_, size_); }

}  // namespace quillet::standin
