// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quillet::standin {

/// Which of SpringBoard's classes the host has, and what they respond to. Each value is called as
/// in the words of a variant, "no-instance" as noInstance.
struct HostVariant {
    enum class Indicator {
        /// There is no such class.
        absent,
        /// The class responds to `activate:`; the underscore is there for the language.
        class_,
        /// The shared instance responds to `activate:`.
        instance,
        /// `sharedInstance` answers nothing.
        noInstance,
        /// Neither the class nor the instance responds to `activate:`.
        deaf,
    };
    enum class Media {
        /// There is no such class.
        absent,
        /// The shared instance responds to `setRingerMuted:`.
        instance,
        /// `sharedInstance` answers nothing.
        noInstance,
        /// The instance does not respond to `setRingerMuted:`.
        deaf,
    };

    Indicator indicator = Indicator::class_;
    Media media = Media::instance;

    bool operator==(const HostVariant&) const = default;
};

/// What `variant` describes, or nothing when it describes no host: a list, separated by commas, of
/// "indicator=" with absent, class, instance, no-instance or deaf, and "media=" with absent,
/// instance, no-instance or deaf. What it does not name is as by default.
std::optional<HostVariant> parseHostVariant(std::string_view variant);

/// The list that describes `host`, both classes named, the indicator first.
std::string textOf(const HostVariant& host);

}  // namespace quillet::standin
