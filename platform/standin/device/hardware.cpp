// SPDX-License-Identifier: MIT
#include "platform/standin/device/hardware.h"

#include <fcntl.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <system_error>
#include <utility>

#include "platform/standin/files/descriptor.h"
#include "platform/standin/files/file.h"
#include "platform/standin/files/file_lock.h"
#include "platform/standin/plist/readings.h"
#include "platform/standin/runtime/dictionary_file.h"

namespace quillet::standin {

namespace {

constexpr char mutedKey[] = "ringer-muted";
constexpr char volumesKey[] = "volumes";

/// Not a number counts as silence.
float inRange(float volume) { return std::isnan(volume) ? 0.0F : std::clamp(volume, 0.0F, 1.0F); }

/// Keeps everybody else from changing the file at `path` while this process does. What is locked is
/// a file beside it, for the file itself is replaced. Only its owner may open that: a folder could
/// be held by whoever may read it.
class Turn {
public:
    explicit Turn(const std::filesystem::path& path)
        : file_{uninterrupted([file = path.string() + ".lock"] {
              constexpr int flags = O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC;
              return open(file.c_str(), flags, 0600);
          })},
          error_{errno},
          lock_{file_.number()} {}

    /// False when the lock could not be had, and nothing is to be changed.
    bool isTaken() const { return lock_.isHeld(); }

    /// Why it could not be had.
    std::string fault() const {
        return file_.isOpen() ? "somebody else holds it" : std::generic_category().message(error_);
    }

private:
    Descriptor file_;
    int error_;
    FileLock lock_;
};

Dictionary volumesOf(const Dictionary& state) {
    const auto volumes = state.find(volumesKey);
    const auto* const dictionary = volumes ? std::get_if<Dictionary>(&*volumes) : nullptr;
    return dictionary ? *dictionary : Dictionary{};
}

}  // namespace

Dictionary Hardware::newState() {
    return {{mutedKey, false}, {volumesKey, Dictionary{{"Ringtone", 0.75}}}};
}

std::optional<Dictionary> Hardware::read() const {
    auto state = readDictionary(path_);
    if (!state) complain(path_, "cannot be read: " + whyNoDictionary(path_));
    return state;
}

bool Hardware::write(const Dictionary& state) const {
    errno = 0;
    if (writeDictionary(path_, state)) return true;
    complain(path_, "cannot be written: " + std::generic_category().message(errno));
    return false;
}

void Hardware::complain(const std::filesystem::path& file, const std::string& complaint) const {
    if (complaints_ != nullptr) complaints_->add(file, complaint);
}

void Hardware::makeAgain(bool muted) {
    if (mayExist(path_)) return;
    std::error_code ignored;
    std::filesystem::create_directories(path_.parent_path(), ignored);
    const Turn turn{path_};
    if (!turn.isTaken()) return complain(path_.string() + ".lock", "no lock: " + turn.fault());
    if (mayExist(path_)) return;
    Dictionary state = newState();
    state.set(mutedKey, muted);
    if (write(state)) complain(path_, "was missing; made again, with the volume of a new device");
}

std::optional<float> Hardware::volume(std::string_view category) const {
    const Dictionary volumes = volumesOf(read().value_or(Dictionary{}));
    const auto found = volumes.find(category);
    const auto volume = found ? floatValue(*found) : std::nullopt;
    return volume ? std::optional{inRange(*volume)} : std::nullopt;
}

bool Hardware::setVolume(std::string_view category, float volume) {
    const Turn turn{path_};
    if (!turn.isTaken()) complain(path_.string() + ".lock", "no lock: " + turn.fault());
    Dictionary state = read().value_or(Dictionary{});
    Dictionary volumes = volumesOf(state);
    if (!turn.isTaken() || !volumes.find(category)) return false;
    volumes.set(category, double{inRange(volume)});
    state.set(volumesKey, std::move(volumes));
    return write(state);
}

bool Hardware::isRingerMuted() const {
    const Dictionary state = read().value_or(Dictionary{});
    const auto muted = state.find(mutedKey);
    return muted && boolValue(*muted).value_or(false);
}

bool Hardware::setRingerMuted(bool muted) {
    const Turn turn{path_};
    if (!turn.isTaken()) complain(path_.string() + ".lock", "no lock: " + turn.fault());
    auto state = read();
    if (!turn.isTaken() || !state) return false;
    state->set(mutedKey, muted);
    return write(*state);
}

}  // namespace quillet::standin
