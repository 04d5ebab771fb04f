// SPDX-License-Identifier: MIT
//
// Attacks the notification service of a device for some time, says what was tried and what held,
// and fails when anything did not.
#include <cstdio>
#include <string>

#include "tests/stress/service/parts.h"

namespace quillet::test {
namespace {

constexpr ServiceExtent shortOne = {2.5, 150, 200, false};
constexpr ServiceExtent ordinary = {30, 7, 10000, true};
constexpr ServiceExtent longOne = {3600, 1, 100000, true};

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

ServiceExtent extentOf(int argc, char** argv) {
    const std::string word = argc > 1 ? argv[1] : "";
    if (word == "--short") return shortOne;
    return word == "--long" ? longOne : ordinary;
}

}  // namespace
}  // namespace quillet::test

int main(int argc, char** argv) { return quillet::test::run(quillet::test::extentOf(argc, argv)); }
