// SPDX-License-Identifier: MIT
//
// Measures one way of reading a property list, or of changing it:
//
//     plist-bench get IN N [ENGINE]
//     plist-bench set IN OUT N [ENGINE]
//     plist-bench make xml|binary SIZE OUT
//
// The first two print the median, the least and the first of N durations in nanoseconds.
#include <plist/plist.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/engine.h"
#include "bench/settings_file.h"
#include "platform/standin/files/file.h"
#include "platform/standin/plist/property_list.h"

namespace {

using namespace quillet;
using Words = std::vector<std::string>;

constexpr std::uint64_t seed = 7;

std::string wordAt(const Words& words, std::size_t index, const char* otherwise = nullptr) {
    if (index < words.size()) return words[index];
    if (otherwise == nullptr) throw std::runtime_error("too few words");
    return otherwise;
}

void measure(int times, const std::function<bool()>& work) {
    using Clock = std::chrono::steady_clock;
    std::vector<std::int64_t> durations;
    for (int i = 0; i < std::max(times, 1); ++i) {
        const auto start = Clock::now();
        if (!work()) throw std::runtime_error("the work cannot be done");
        durations.push_back(std::chrono::nanoseconds{Clock::now() - start}.count());
    }
    const std::int64_t first = durations.front();
    std::sort(durations.begin(), durations.end());
    std::printf("%lld %lld %lld\n", static_cast<long long>(durations[durations.size() / 2]),
                static_cast<long long>(durations.front()), static_cast<long long>(first));
}

std::string inBinary(const std::string& text) {
    plist_t node = nullptr;
    char* bytes = nullptr;
    std::uint32_t size = 0;
    plist_from_memory(text.data(), static_cast<std::uint32_t>(text.size()), &node);
    plist_to_bin(node, &bytes, &size);
    std::string copy(bytes, size);
    plist_to_bin_free(bytes);
    plist_free(node);
    return copy;
}

void make(const std::string& form, std::size_t size, const std::string& out) {
    std::string bytes = standin::writePropertyList(bench::settings(size, seed));
    if (form == "binary") bytes = inBinary(bytes);
    if (!standin::writeFileAtomically(out, bytes)) throw std::runtime_error("cannot write " + out);
}

void run(const Words& words) {
    const std::string command = wordAt(words, 0);
    if (command == "make") {
        make(wordAt(words, 1), std::stoul(wordAt(words, 2)), wordAt(words, 3));
    } else if (command == "get") {
        const auto& engine = bench::engines().at(wordAt(words, 3, "ours"));
        measure(std::stoi(wordAt(words, 2)), [&] { return engine.get(words[1]); });
    } else if (command == "set") {
        const auto& engine = bench::engines().at(wordAt(words, 4, "ours"));
        measure(std::stoi(wordAt(words, 3)), [&] { return engine.set(words[1], words[2]); });
    } else {
        throw std::runtime_error("get, set or make");
    }
}

}  // namespace

int main(int count, char** arguments) {
    try {
        run(Words(arguments + 1, arguments + count));
    } catch (const std::exception& error) {
        std::fprintf(stderr, "plist-bench: %s\n", error.what());
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}
