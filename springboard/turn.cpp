// SPDX-License-Identifier: MIT
#include "springboard/turn.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <cerrno>
#include <system_error>

#include "platform/standin/files/same_file.h"

namespace quillet {

namespace {

/// Without waiting: what lies there may be a FIFO.
constexpr int openFlags = O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;

bool lock(int file, int how) {
    return standin::uninterrupted([&] { return flock(file, how); }) == 0;
}

bool wait(int file, const std::function<void()>& beforeWaiting) {
    if (lock(file, LOCK_EX | LOCK_NB)) return true;
    if (errno != EWOULDBLOCK) return false;
    beforeWaiting();
    return lock(file, LOCK_EX);
}

bool isAt(const std::filesystem::path& path, int file) {
    struct stat own {};
    struct stat found {};
    return fstat(file, &own) != 0 ||
           (lstat(path.c_str(), &found) == 0 && standin::isSameFile(own, found));
}

/// The locked file at `path`; -1, and errno says why, when it cannot be had.
int take(const std::filesystem::path& path, const std::function<void()>& beforeWaiting) {
    for (;;) {
        standin::Descriptor file{
            standin::uninterrupted([&] { return open(path.c_str(), openFlags, 0600); })};
        if (!file.isOpen() || !wait(file.number(), beforeWaiting)) return -1;
        if (isAt(path, file.number())) return file.release();
    }
}

}  // namespace

Turn::Turn(const std::filesystem::path& file, const std::function<void()>& beforeWaiting)
    : file_{take(file, beforeWaiting)} {
    if (!file_.isOpen()) throw std::system_error(errno, std::generic_category(), file.string());
}

bool Turn::isTaken(const std::filesystem::path& file) {
    constexpr int flags = O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
    const standin::Descriptor opened{
        standin::uninterrupted([&] { return open(file.c_str(), flags); })};
    return opened.isOpen() && !lock(opened.number(), LOCK_SH | LOCK_NB) && errno == EWOULDBLOCK;
}

}  // namespace quillet
