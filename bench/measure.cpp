// SPDX-License-Identifier: MIT
#include "bench/measure.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>

namespace quillet::bench {
namespace {

/// The duration that `share` of all do not exceed.
double quantile(Durations durations, double share) {
    std::sort(durations.begin(), durations.end());
    const auto place = static_cast<std::size_t>(share * static_cast<double>(durations.size()));
    return durations.at(std::min(place, durations.size() - 1));
}

}  // namespace

std::string wordAt(const Words& words, std::size_t index, const char* otherwise) {
    if (index < words.size()) return words[index];
    if (otherwise == nullptr) throw std::runtime_error("too few words");
    return otherwise;
}

Durations measure(int times, int batch, const std::function<void()>& work) {
    using Clock = std::chrono::steady_clock;
    Durations durations;
    for (int i = 0; i < std::max(times, 1); ++i) {
        const auto start = Clock::now();
        for (int j = 0; j < batch; ++j) work();
        const std::chrono::duration<double, std::nano> taken = Clock::now() - start;
        durations.push_back(taken.count() / batch);
    }
    return durations;
}

void print(const Durations& durations) {
    std::printf("%.1f %.1f %.1f\n", quantile(durations, 0.5), quantile(durations, 0),
                durations.at(0));
}

void printWithTail(const Durations& durations) {
    std::printf("%.1f %.1f\n", quantile(durations, 0.5), quantile(durations, 0.99));
}

int run(int count, char** arguments, void (*work)(const Words&)) {
    try {
        work(Words(arguments + 1, arguments + count));
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s: %s\n", arguments[0], error.what());
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}

}  // namespace quillet::bench
