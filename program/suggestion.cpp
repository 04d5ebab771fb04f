// SPDX-License-Identifier: MIT
#include "program/suggestion.h"

#include <algorithm>
#include <numeric>
#include <utility>

#include "program/usage_error.h"

namespace quillet {

namespace {

using Costs = std::vector<std::size_t>;

/// How many slips lead from one word to the other.
std::size_t slips(std::string_view from, std::string_view to) {
    Costs beforeLast;
    Costs last(to.size() + 1);
    std::iota(last.begin(), last.end(), 0);
    for (std::size_t i = 1; i <= from.size(); ++i) {
        Costs row = {i};
        for (std::size_t j = 1; j <= to.size(); ++j) {
            const bool differ = from[i - 1] != to[j - 1];
            row.push_back(std::min({row[j - 1] + 1, last[j] + 1, last[j - 1] + differ}));
            const bool swapped =
                i > 1 && j > 1 && from[i - 1] == to[j - 2] && from[i - 2] == to[j - 1];
            if (swapped) row[j] = std::min(row[j], beforeLast[j - 2] + 1);
        }
        beforeLast = std::exchange(last, std::move(row));
    }
    return last.back();
}

std::size_t distance(std::string_view word, std::string_view known) {
    const bool begins = word.size() > 1 && known.starts_with(word);
    return begins ? 1 : slips(word, known);
}

}  // namespace

std::string suggestion(std::string_view word, const std::vector<std::string>& known) {
    const auto nearest = std::ranges::min_element(
        known, {}, [&](const std::string& name) { return distance(word, name); });
    if (nearest == known.end()) return "";
    const bool isNear = distance(word, *nearest) <= (word.size() + 1) / 3;
    return isNear ? "; did you mean " + inQuotes(*nearest) + "?" : "";
}

}  // namespace quillet
