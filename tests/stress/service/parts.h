// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <filesystem>

namespace quillet::test {

/// How much is tried.
struct ServiceExtent {
    /// For each part that tries until its time is over.
    double seconds;
    /// Of the instructions of a post every so many are tried.
    std::size_t stride;
    int killsInWaits;
    /// Whether a share of the processor can be told from so short a time.
    bool isMeasured;
    /// Whether killing waits ends with the time, too.
    bool isBounded = false;
    /// The folder of the programs that users run.
    std::filesystem::path programs = {};
};

// The parts of the attack. Each prints what it tried, and answers whether it held.

bool killInWaits(const ServiceExtent& extent);
bool killPosters(const ServiceExtent& extent);
bool waitIdly(const ServiceExtent& extent);
bool liveAndDie(const ServiceExtent& extent);
bool addNames(const ServiceExtent& extent);
bool damageFiles(const ServiceExtent& extent);

}  // namespace quillet::test
