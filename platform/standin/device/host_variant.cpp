// SPDX-License-Identifier: MIT
#include "platform/standin/device/host_variant.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace quillet::standin {

namespace {

template <class Variant, std::size_t count>
bool choose(Variant& variant, std::string_view word,
            const std::array<std::pair<std::string_view, Variant>, count>& words) {
    const auto* const found =
        std::ranges::find(words, word, &std::pair<std::string_view, Variant>::first);
    if (found == words.end()) return false;
    variant = found->second;
    return true;
}

/// The word of a variant, which has one.
template <class Variant, std::size_t count>
std::string_view wordFor(Variant variant,
                         const std::array<std::pair<std::string_view, Variant>, count>& words) {
    return std::ranges::find(words, variant, &std::pair<std::string_view, Variant>::second)->first;
}

constexpr auto indicatorWords = std::to_array<std::pair<std::string_view, HostVariant::Indicator>>({
    {"absent", HostVariant::Indicator::absent},
    {"class", HostVariant::Indicator::class_},
    {"instance", HostVariant::Indicator::instance},
    {"no-instance", HostVariant::Indicator::noInstance},
    {"deaf", HostVariant::Indicator::deaf},
});

constexpr auto mediaWords = std::to_array<std::pair<std::string_view, HostVariant::Media>>({
    {"absent", HostVariant::Media::absent},
    {"instance", HostVariant::Media::instance},
    {"no-instance", HostVariant::Media::noInstance},
    {"deaf", HostVariant::Media::deaf},
});

constexpr std::string_view indicator = "indicator=";
constexpr std::string_view media = "media=";

bool parsePart(HostVariant& host, std::string_view part) {
    if (part.starts_with(indicator)) {
        return choose(host.indicator, part.substr(indicator.size()), indicatorWords);
    }
    return part.starts_with(media) && choose(host.media, part.substr(media.size()), mediaWords);
}

}  // namespace

std::optional<HostVariant> parseHostVariant(std::string_view variant) {
    HostVariant host;
    for (std::size_t begin = 0; begin <= variant.size();) {
        const std::size_t end = std::min(variant.find(',', begin), variant.size());
        if (!parsePart(host, variant.substr(begin, end - begin))) return std::nullopt;
        begin = end + 1;
    }
    return host;
}

std::string textOf(const HostVariant& host) {
    std::string text{indicator};
    text += wordFor(host.indicator, indicatorWords);
    text += ',';
    text += media;
    return text += wordFor(host.media, mediaWords);
}

}  // namespace quillet::standin
