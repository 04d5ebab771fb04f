// SPDX-License-Identifier: MIT
#include "platform/standin/files/file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdint>
#include <system_error>

#include "platform/standin/files/descriptor.h"
#include "platform/standin/files/draft.h"

namespace quillet::standin {

namespace fs = std::filesystem;

namespace {

/// The size of the regular file, which it may have changed since; nothing when it is no such file
/// or larger than `maxSize`.
std::optional<std::size_t> sizeOf(int file, std::size_t maxSize) {
    struct stat status {};
    const bool isRegular = ::fstat(file, &status) == 0 && S_ISREG(status.st_mode) &&
                           static_cast<std::uint64_t>(status.st_size) <= maxSize;
    return isRegular ? std::optional{static_cast<std::size_t>(status.st_size)} : std::nullopt;
}

/// Where the links at `path` lead, even if nothing is there.
fs::path followed(fs::path path) {
    constexpr int mostLinks = 40;  // of the system itself, see path_resolution(7)
    for (int links = 0; links < mostLinks; ++links) {
        std::error_code error;
        const fs::path link = fs::read_symlink(path, error);
        if (error) break;
        path = path.parent_path() / link;
    }
    return path;
}

bool give(int file, uid_t owner, gid_t group) {
    return uninterrupted([&] { return ::fchown(file, owner, group); }) == 0;
}

/// Gives `file` the owner, the group and the mode that the one before had, as far as this process
/// may. Nobody is admitted who was not before.
bool inherit(int file, const struct stat& before) {
    constexpr auto sameOwner = static_cast<uid_t>(-1);
    const bool ownerStays = give(file, before.st_uid, before.st_gid);
    const bool groupStays = ownerStays || give(file, sameOwner, before.st_gid);
    mode_t mode = before.st_mode & 07777U;
    if (!ownerStays) mode &= 01777U;
    if (!groupStays) mode &= 07707U | (mode & 07U) << 3U;
    return uninterrupted([&] { return ::fchmod(file, mode); }) == 0 || errno == EPERM;
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

bool mayExist(const fs::path& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 || (errno != ENOENT && errno != ENOTDIR);
}

std::optional<std::string> readFile(const fs::path& path, std::size_t maxSize) {
    // Without waiting: opening a FIFO would otherwise last until somebody writes to it.
    constexpr int flags = O_RDONLY | O_NONBLOCK | O_CLOEXEC;
    const Descriptor file{uninterrupted([&] { return ::open(path.c_str(), flags); })};
    const auto usualSize = file.isOpen() ? sizeOf(file.number(), maxSize) : std::nullopt;
    if (!usualSize) return std::nullopt;
    std::string bytes;
    bytes.reserve(*usualSize);
    std::array<char, 65536> chunk;
    while (bytes.size() <= maxSize) {
        const auto size =
            uninterrupted([&] { return ::read(file.number(), chunk.data(), chunk.size()); });
        if (size < 0) return std::nullopt;
        if (size == 0) return bytes;
        bytes.append(chunk.data(), static_cast<std::size_t>(size));
    }
    return std::nullopt;
}

std::string faultOf(const fs::path& path, const std::string& otherwise) {
    const Descriptor file{
        uninterrupted([&] { return ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC); })};
    if (!file.isOpen()) return std::generic_category().message(errno);
    const bool isFile = sizeOf(file.number(), std::numeric_limits<std::size_t>::max()).has_value();
    return isFile ? otherwise : "not a file";
}

bool writeFileAtomically(const fs::path& path, std::string_view bytes) {
    constexpr mode_t newFile = 0666;
    constexpr mode_t forNobodyElse = 0600;
    std::error_code error;
    const fs::path place = followed(fs::absolute(path, error));
    struct stat before {};
    const bool isThere = ::lstat(place.c_str(), &before) == 0;
    if (isThere ? !S_ISREG(before.st_mode) : errno != ENOENT) return false;
    Draft draft{place.parent_path(), Draft::Kind::file, isThere ? forNobodyElse : newFile};
    return draft.isMade() && writeAll(draft.descriptor(), bytes) &&
           (!isThere || inherit(draft.descriptor(), before)) && draft.publish(place);
}

}  // namespace quillet::standin
