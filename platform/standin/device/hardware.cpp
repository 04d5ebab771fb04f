// SPDX-License-Identifier: MIT
#include "platform/standin/device/hardware.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <utility>

#include "platform/standin/plist/property_list.h"

namespace quillet::standin {

namespace {

constexpr char mutedKey[] = "ringer-muted";
constexpr char volumesKey[] = "volumes";

/// Not a number counts as silence.
float inRange(float volume) { return std::isnan(volume) ? 0.0F : std::clamp(volume, 0.0F, 1.0F); }

/// Keeps other processes from changing the file at `path` while this one does. The folder is what
/// is locked: the file itself is replaced. The kernel gives the lock back when its holder dies.
class Lock {
public:
    explicit Lock(const std::filesystem::path& path)
        : folder_{open(path.parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)} {
        while (flock(folder_, LOCK_EX) != 0 && errno == EINTR) {
        }
    }
    ~Lock() { close(folder_); }
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;

private:
    int folder_;
};

Dictionary volumesOf(const Dictionary& state) {
    const Value* const volumes = state.find(volumesKey);
    const auto* const dictionary = volumes ? std::get_if<Dictionary>(volumes) : nullptr;
    return dictionary ? *dictionary : Dictionary{};
}

}  // namespace

bool Hardware::create(const std::filesystem::path& path) {
    return Hardware{path}.write({{mutedKey, false}, {volumesKey, Dictionary{{"Ringtone", 0.75}}}});
}

std::optional<Dictionary> Hardware::read() const { return readDictionary(path_); }

bool Hardware::write(Dictionary state) const {
    return writeFileAtomically(path_, writePropertyList(std::move(state)));
}

std::optional<float> Hardware::volume(std::string_view category) const {
    const Dictionary volumes = volumesOf(read().value_or(Dictionary{}));
    const Value* const found = volumes.find(category);
    const auto volume = found ? floatValue(*found) : std::nullopt;
    return volume ? std::optional{inRange(*volume)} : std::nullopt;
}

bool Hardware::setVolume(std::string_view category, float volume) {
    const Lock lock{path_};
    Dictionary state = read().value_or(Dictionary{});
    Dictionary volumes = volumesOf(state);
    if (volumes.find(category) == nullptr) return false;
    volumes.set(category, double{inRange(volume)});
    state.set(volumesKey, std::move(volumes));
    return write(std::move(state));
}

bool Hardware::isRingerMuted() const {
    const Dictionary state = read().value_or(Dictionary{});
    const Value* const muted = state.find(mutedKey);
    return muted && boolValue(*muted).value_or(false);
}

void Hardware::setRingerMuted(bool muted) {
    const Lock lock{path_};
    auto state = read();
    if (!state) return;
    state->set(mutedKey, muted);
    write(std::move(*state));
}

}  // namespace quillet::standin
