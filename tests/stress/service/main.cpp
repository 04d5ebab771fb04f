// SPDX-License-Identifier: MIT
//
// Attacks the notification service of a device for some time, says what was tried and what held,
// and fails when anything did not.
#include <cstdio>
#include <exception>
#include <string>
#include <vector>

#include "tests/stress/service/parts.h"

namespace quillet::test {
namespace {

const ServiceExtent shortOne = {1.5, 250, 200, false};
const ServiceExtent ordinary = {30, 7, 10000, true};
const ServiceExtent longOne = {3600, 1, 100000, true};

/// Runs one part; it has printed what it tried.
bool holds(bool (*part)(const ServiceExtent&), const ServiceExtent& extent) {
    const bool isHolding = part(extent);
    std::puts(isHolding ? "holds" : "FAILS");
    std::fflush(stdout);
    return isHolding;
}

int run(const ServiceExtent& extent) {
    bool isHolding = true;
    for (const auto part :
         {killInWaits, killPosters, waitIdly, liveAndDie, addNames, damageFiles}) {
        isHolding = holds(part, extent) && isHolding;
    }
    return isHolding ? 0 : 1;
}

/// The first word is the folder of the programs. Of the time that is given each of the parts that
/// take as much as they get has a third.
ServiceExtent extentOf(const std::vector<std::string>& words) {
    ServiceExtent extent = ordinary;
    for (std::size_t i = 0; i < words.size(); ++i) {
        const bool isTime = words[i] == "--minutes" && i + 1 < words.size();
        if (words[i] == "--short") extent = shortOne;
        if (words[i] == "--long") extent = longOne;
        if (!isTime) continue;
        extent.seconds = 60 * std::stod(words[++i]) / 3;
        extent.isBounded = true;
    }
    extent.programs = words.at(0);
    return extent;
}

}  // namespace
}  // namespace quillet::test

int main(int argc, char** argv) {
    try {
        return quillet::test::run(quillet::test::extentOf({argv + 1, argv + argc}));
    } catch (const std::exception& error) {
        std::fprintf(stderr, "stress_service: %s\n", error.what());
        return 1;
    }
}
