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

constexpr auto indicatorWords = std::to_array<std::pair<std::string_view, Host::Indicator>>({
    {"absent", Host::Indicator::absent},
    {"class", Host::Indicator::atClass},
    {"instance", Host::Indicator::atInstance},
    {"no-instance", Host::Indicator::noInstance},
    {"deaf", Host::Indicator::deafInstance},
});

constexpr auto mediaWords = std::to_array<std::pair<std::string_view, Host::Media>>({
    {"absent", Host::Media::absent},
    {"instance", Host::Media::present},
    {"no-instance", Host::Media::noInstance},
    {"deaf", Host::Media::deafInstance},
});

bool parsePart(Host& host, std::string_view part) {
    constexpr std::string_view indicator = "indicator=";
    constexpr std::string_view media = "media=";
    if (part.starts_with(indicator)) {
        return choose(host.indicator, part.substr(indicator.size()), indicatorWords);
    }
    return part.starts_with(media) && choose(host.media, part.substr(media.size()), mediaWords);
}

}  // namespace

std::optional<Host> parseHost(std::string_view variant) {
    Host host;
    for (std::size_t begin = 0; begin <= variant.size();) {
        const std::size_t end = std::min(variant.find(',', begin), variant.size());
        if (!parsePart(host, variant.substr(begin, end - begin))) return std::nullopt;
        begin = end + 1;
    }
    return host;
}

}  // namespace quillet::standin
