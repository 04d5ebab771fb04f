// SPDX-License-Identifier: MIT
#include "platform/standin/files/draft.h"

#include <dirent.h>
#include <fcntl.h>
#include <stdio.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <memory>
#include <new>
#include <string>
#include <string_view>
#include <system_error>

namespace quillet::standin {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view draftPrefix = ".quillet-draft-";

/// A name that no draft of a living process has had.
std::string newDraftName() {
    static std::atomic<unsigned> serial = 0;
    return std::string{draftPrefix} + std::to_string(getpid()) + "-" + std::to_string(serial++);
}

/// The working folder is an empty text.
std::string pathIn(const std::string& folder, const std::string& name) {
    return folder.empty() ? name : folder + '/' + name;
}

bool isNumber(std::string_view text) {
    return !text.empty() && text.find_first_not_of("0123456789") == text.npos;
}

bool isDraftName(std::string_view name) {
    if (!name.starts_with(draftPrefix)) return false;
    name.remove_prefix(draftPrefix.size());
    const std::size_t dash = std::min(name.find('-'), name.size() - 1);
    return isNumber(name.substr(0, dash)) && isNumber(name.substr(dash + 1));
}

void removeDraft(const std::string& path) noexcept {
    if (unlink(path.c_str()) == 0 || errno != EISDIR) return;
    try {
        std::error_code ignored;
        fs::remove_all(path, ignored);
    } catch (const std::bad_alloc&) {
        return;  // It stays, for the next one in this folder to remove.
    }
}

int openFile(const std::string& path, int flags, mode_t mode = 0) {
    return uninterrupted([&] { return open(path.c_str(), flags | O_CLOEXEC, mode); });
}

/// -1, with EEXIST where another name may do.
int openNew(const std::string& path, Draft::Kind kind, mode_t mode) {
    if (kind == Draft::Kind::file) return openFile(path, O_WRONLY | O_CREAT | O_EXCL, mode);
    if (mkdir(path.c_str(), mode) != 0) return -1;
    const int folder = openFile(path, O_RDONLY | O_DIRECTORY);
    if (folder == -1) {
        // If it is gone, somebody has taken it for abandoned.
        const int error = errno == ENOENT ? EEXIST : errno;
        rmdir(path.c_str());
        errno = error;
    }
    return folder;
}

bool lock(int draft) {
    return uninterrupted([&] { return flock(draft, LOCK_EX | LOCK_NB); }) == 0;
}

/// Locks a draft of one's own, where the file system knows locks. False when somebody has taken it
/// for abandoned in the instant since it was made.
bool keep(int draft) {
    if (!lock(draft)) return errno != EWOULDBLOCK;
    struct stat status = {};
    return fstat(draft, &status) != 0 || status.st_nlink > 0;
}

/// The descriptor of a new draft at `path`; -1, with EEXIST where another name may do.
int makeAt(const std::string& path, Draft::Kind kind, mode_t mode) {
    Descriptor draft{openNew(path, kind, mode)};
    if (!draft.isOpen() || keep(draft.number())) return draft.release();
    removeDraft(path);
    errno = EEXIST;
    return -1;
}

/// The same, under a name that goes to `path`.
int makeIn(const std::string& folder, Draft::Kind kind, mode_t mode, std::string& path) {
    Draft::removeAbandoned(folder);
    constexpr int names = 100;
    int draft = -1;
    for (int name = 0; name < names && draft == -1; ++name) {
        path = pathIn(folder, newDraftName());
        draft = makeAt(path, kind, mode);
        if (draft == -1 && errno != EEXIST) break;
    }
    return draft;
}

struct CloseFolder {
    void operator()(DIR* folder) const { closedir(folder); }
};

/// Opens, without waiting for whoever may be at the other end, and removes what nobody has locked.
void removeIfAbandoned(const std::string& path) {
    const Descriptor draft{openFile(path, O_RDONLY | O_NONBLOCK | O_NOFOLLOW)};
    if (draft.isOpen() && lock(draft.number())) removeDraft(path);
}

}  // namespace

bool flush(int descriptor) {
    return uninterrupted([&] { return fsync(descriptor); }) == 0 || errno == EINVAL;
}

Draft::Draft(const fs::path& folder, Kind kind, mode_t mode)
    : folder_{folder}, file_{makeIn(folder_, kind, mode, path_)} {}

Draft::~Draft() {
    if (isMade() && !isPublished_) removeDraft(path_);
}

bool Draft::publish(const fs::path& place) {
    const Descriptor folder{openFile(folder_, O_RDONLY | O_DIRECTORY)};
    if (!flush(descriptor()) || rename(path_.c_str(), place.c_str()) != 0) return false;
    isPublished_ = true;
    // No failure from here: what is at the place is whole, and on the disk the one or the other.
    if (folder.isOpen()) flush(folder.number());
    return true;
}

bool Draft::exchange(const fs::path& place) {
    const Descriptor folder{openFile(folder_, O_RDONLY | O_DIRECTORY)};
    const bool isFlushed = flush(descriptor());
    if (!isFlushed ||
        renameat2(AT_FDCWD, path_.c_str(), AT_FDCWD, place.c_str(), RENAME_EXCHANGE) != 0) {
        return false;
    }
    if (folder.isOpen()) flush(folder.number());
    return true;
}

void Draft::removeAbandoned(const std::string& folder) noexcept {
    // Not a directory_iterator, which ends the process for want of memory.
    const std::unique_ptr<DIR, CloseFolder> entries{opendir(folder.c_str())};
    if (!entries) return;
    try {
        while (const dirent* const entry = readdir(entries.get())) {
            if (isDraftName(entry->d_name)) removeIfAbandoned(pathIn(folder, entry->d_name));
        }
    } catch (const std::bad_alloc&) {
        return;  // They stay, for the next one in this folder to remove.
    }
}

}  // namespace quillet::standin
