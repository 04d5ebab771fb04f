// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string_view>

namespace quillet::standin {

/// Which of SpringBoard's classes the host has, and what they respond to.
struct Host {
    enum class Indicator {
        absent,
        atClass,
        atInstance,
        /// `sharedInstance` answers nothing.
        noInstance,
        /// The instance does not respond to `activate:`.
        deafInstance,
    };
    enum class Media {
        absent,
        present,
        noInstance,
        /// The instance does not respond to `setRingerMuted:`.
        deafInstance,
    };

    Indicator indicator = Indicator::atClass;
    Media media = Media::present;
};

/// The host that `variant` describes, or nothing when it describes none: a list, separated by
/// commas, of "indicator=" with absent, class, instance, no-instance or deaf, and "media=" with
/// absent, instance, no-instance or deaf. What it does not name is as by default.
std::optional<Host> parseHost(std::string_view variant);

}  // namespace quillet::standin
