// SPDX-License-Identifier: MIT
#include "springboard/turn.h"

#include <fcntl.h>
#include <sys/file.h>

#include <cerrno>
#include <system_error>

namespace quillet {

namespace {

/// Without waiting: what lies there may be a FIFO.
constexpr int openFlags = O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;

bool lock(int file, int how) {
    return standin::uninterrupted([&] { return flock(file, how); }) == 0;
}

}  // namespace

Turn::Turn(const std::filesystem::path& file, const std::function<void()>& beforeWaiting)
    : file_{standin::uninterrupted([&] { return open(file.c_str(), openFlags, 0600); })} {
    if (file_.isOpen() && lock(file_.number(), LOCK_EX | LOCK_NB)) return;
    if (file_.isOpen() && errno == EWOULDBLOCK) {
        beforeWaiting();
        if (lock(file_.number(), LOCK_EX)) return;
    }
    throw std::system_error(errno, std::generic_category(), file.string());
}

}  // namespace quillet
