// SPDX-License-Identifier: MIT
#include "platform/standin/files/file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cstddef>
#include <cstdio>
#include <cstdlib>

#include "platform/standin/files/descriptor.h"

namespace quillet::standin {
namespace {

bool isRegular(int file) {
    struct stat status {};
    return ::fstat(file, &status) == 0 && S_ISREG(status.st_mode);
}

/// The permission bits of the file at `path`, or those of a new file.
mode_t modeFor(const std::filesystem::path& path) {
    constexpr mode_t newFile = 0644;
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 ? status.st_mode & 07777U : newFile;
}

bool writeAll(int file, std::string_view bytes) {
    while (!bytes.empty()) {
        const auto written =
            uninterrupted([&] { return ::write(file, bytes.data(), bytes.size()); });
        if (written <= 0) return false;
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

}  // namespace

std::optional<std::string> readFile(const std::filesystem::path& path) {
    // Without waiting: opening a FIFO would otherwise last until somebody writes to it.
    constexpr int flags = O_RDONLY | O_NONBLOCK | O_CLOEXEC;
    const Descriptor file{uninterrupted([&] { return ::open(path.c_str(), flags); })};
    if (!file.isOpen() || !isRegular(file.number())) return std::nullopt;
    std::string bytes;
    std::array<char, 65536> chunk;
    for (;;) {
        const auto size =
            uninterrupted([&] { return ::read(file.number(), chunk.data(), chunk.size()); });
        if (size < 0) return std::nullopt;
        if (size == 0) return bytes;
        bytes.append(chunk.data(), static_cast<std::size_t>(size));
    }
}

bool writeFileAtomically(const std::filesystem::path& path, std::string_view bytes) {
    std::string temporary = path.parent_path() / ".quillet-XXXXXX";
    Descriptor file{::mkostemp(temporary.data(), O_CLOEXEC)};
    if (!file.isOpen()) return false;
    // Not synced to the disk: a process killed at any instant leaves the old bytes or the new, and
    // that is what matters; a loss of power is not modelled.
    const bool isReplaced = writeAll(file.number(), bytes) &&
                            ::fchmod(file.number(), modeFor(path)) == 0 && file.close() &&
                            ::rename(temporary.c_str(), path.c_str()) == 0;
    if (!isReplaced) ::unlink(temporary.c_str());
    return isReplaced;
}

}  // namespace quillet::standin
