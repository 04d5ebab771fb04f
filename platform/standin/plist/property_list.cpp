// SPDX-License-Identifier: MIT
#include "platform/standin/plist/property_list.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <utility>

namespace quillet::standin {
namespace {

/// Repeats a system call for as long as a signal interrupts it.
template <class Call>
auto uninterrupted(Call call) {
    for (;;) {
        const auto result = call();
        if (result != -1 || errno != EINTR) return result;
    }
}

/// An open file, or none (-1).
class Descriptor {
public:
    explicit Descriptor(int number) : number_{number} {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() {
        if (number_ != -1) ::close(number_);
    }

    int number() const { return number_; }
    /// False when the system reports a failure, which may be one of an earlier write.
    bool close() { return ::close(std::exchange(number_, -1)) == 0; }

private:
    int number_;
};

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

std::optional<Value> readPropertyList(std::string_view bytes) {
    return bytes.starts_with("bplist00") ? readBinaryPropertyList(bytes)
                                         : readXMLPropertyList(bytes);
}

std::optional<std::string> readFile(const std::filesystem::path& path) {
    // Without waiting: opening a FIFO would otherwise last until somebody writes to it.
    constexpr int flags = O_RDONLY | O_NONBLOCK | O_CLOEXEC;
    const Descriptor file{uninterrupted([&] { return ::open(path.c_str(), flags); })};
    if (file.number() == -1 || !isRegular(file.number())) return std::nullopt;
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

std::optional<Dictionary> readDictionary(const std::filesystem::path& path) {
    const auto bytes = readFile(path);
    auto value = bytes ? readPropertyList(*bytes) : std::nullopt;
    auto* const dictionary = value ? std::get_if<Dictionary>(&*value) : nullptr;
    return dictionary ? std::optional{std::move(*dictionary)} : std::nullopt;
}

bool writeFileAtomically(const std::filesystem::path& path, std::string_view bytes) {
    std::string temporary = path.parent_path() / ".quillet-XXXXXX";
    Descriptor file{::mkostemp(temporary.data(), O_CLOEXEC)};
    if (file.number() == -1) return false;
    // Not synced to the disk: a process killed at any instant leaves the old bytes or the new, and
    // that is what matters; a loss of power is not modelled.
    const bool isReplaced = writeAll(file.number(), bytes) &&
                            ::fchmod(file.number(), modeFor(path)) == 0 && file.close() &&
                            ::rename(temporary.c_str(), path.c_str()) == 0;
    if (!isReplaced) ::unlink(temporary.c_str());
    return isReplaced;
}

}  // namespace quillet::standin
