// SPDX-License-Identifier: MIT
#include "platform/standin/hardware.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "platform/standin/property_list_file.h"

namespace quillet::standin {

namespace {

constexpr char mutedKey[] = "ringer-muted";
constexpr char volumesKey[] = "volumes";

Dictionary volumesOf(const Dictionary& state) {
    const Value* const volumes = state.find(volumesKey);
    const auto* const dictionary = volumes ? std::get_if<Dictionary>(volumes) : nullptr;
    return dictionary ? *dictionary : Dictionary{};
}

}  // namespace

bool Hardware::create(const std::filesystem::path& path) {
    return Hardware{path}.write({{mutedKey, false}, {volumesKey, Dictionary{{"Ringtone", 0.75}}}});
}

Dictionary Hardware::read() const {
    const auto bytes = readFile(path_);
    auto value = bytes ? readPropertyList(*bytes) : std::nullopt;
    auto* const state = value ? std::get_if<Dictionary>(&*value) : nullptr;
    return state ? std::move(*state) : Dictionary{};
}

bool Hardware::write(Dictionary state) const {
    return writeFileAtomically(path_, writePropertyList(std::move(state)));
}

std::optional<float> Hardware::volume(std::string_view category) const {
    const Dictionary volumes = volumesOf(read());
    const Value* const volume = volumes.find(category);
    return volume ? floatValue(*volume) : std::nullopt;
}

bool Hardware::setVolume(std::string_view category, float volume) {
    Dictionary state = read();
    Dictionary volumes = volumesOf(state);
    if (volumes.find(category) == nullptr) return false;
    volumes.set(category, std::isnan(volume) ? 0.0 : double{std::clamp(volume, 0.0F, 1.0F)});
    state.set(volumesKey, std::move(volumes));
    return write(std::move(state));
}

bool Hardware::isRingerMuted() const {
    const Dictionary state = read();
    const Value* const muted = state.find(mutedKey);
    return muted && boolValue(*muted).value_or(false);
}

void Hardware::setRingerMuted(bool muted) {
    Dictionary state = read();
    state.set(mutedKey, muted);
    write(std::move(state));
}

}  // namespace quillet::standin
