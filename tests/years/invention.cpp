// SPDX-License-Identifier: MIT
#include "tests/years/invention.h"

#include <array>
#include <limits>

namespace quillet::test {

using standin::HostVariant;
using standin::TraceValue;
using Kind = FileContent::Kind;

namespace {

const std::array<std::int32_t, 10> states = {0,
                                             1,
                                             0,
                                             1,
                                             -1,
                                             2,
                                             -2,
                                             64,
                                             std::numeric_limits<std::int32_t>::min(),
                                             std::numeric_limits<std::int32_t>::max()};
const std::array<std::string, 5> machines = {"iPhone6,1", "iPod5,1", "iPod7,1", "ipod7,1",
                                             "iPad4,1"};
const std::array<std::uint64_t, 5> words = {0, 1, 2, 1ULL << 32U,
                                            std::numeric_limits<std::uint64_t>::max()};
/// Flags, numbers and texts, each of which reads as a flag and as a volume.
const std::array<TraceValue, 24> values = {true,
                                           false,
                                           true,
                                           false,
                                           true,
                                           false,
                                           TraceValue{std::int64_t{0}},
                                           TraceValue{std::int64_t{1}},
                                           TraceValue{std::int64_t{2}},
                                           TraceValue{std::int64_t{-1}},
                                           0.0,
                                           0.5,
                                           0.015625,
                                           -0.25,
                                           std::string{""},
                                           std::string{"yes"},
                                           std::string{"no"},
                                           std::string{"0"},
                                           std::string{"1"},
                                           std::string{" -007"},
                                           std::string{"true"},
                                           std::string{"0.5"},
                                           std::string{"abc"},
                                           std::string{"+000Y"}};

}  // namespace

FileContent Invention::content(std::initializer_list<const char*> keys) {
    const std::size_t kind = chance_.below(12);
    if (kind == 0) return {Kind::absent, {}};
    if (kind == 1) return {Kind::unreadable, {}};
    FileContent content{Kind::dictionary, {}};
    for (const char* const key : keys) {
        if (!chance_.oneIn(4)) content.entries[key] = chance_.of(values);
    }
    return content;
}

FileContent Invention::choices() {
    FileContent made = content({"ios-vibrate-pattern", "vibrate-when-off", "vibrate-when-on",
                                "ringtone-volume", "another"});
    // More often than by chance, so that there is more to be seen.
    const bool ownVibration = made.kind == Kind::dictionary && chance_.oneIn(2);
    if (ownVibration) made.entries["ios-vibrate-pattern"] = false;
    return made;
}

FileContent Invention::settings() { return content({"ring-vibrate", "silent-vibrate", "another"}); }

std::optional<float> Invention::volume() {
    if (chance_.oneIn(10)) return std::nullopt;
    return static_cast<float>(chance_.below(65)) / 64;
}

HostVariant Invention::host() {
    return {static_cast<HostVariant::Indicator>(chance_.below(5)),
            static_cast<HostVariant::Media>(chance_.below(4))};
}

const std::string& Invention::machine() { return chance_.of(machines); }

std::uint64_t Invention::word() { return chance_.of(words); }

std::int32_t Invention::state() { return chance_.of(states); }

}  // namespace quillet::test
