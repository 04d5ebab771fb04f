// SPDX-License-Identifier: MIT
//
// Measures one way of reading a property list, or of changing it:
//
//     plist-bench get IN N [ENGINE]
//     plist-bench set IN OUT N [ENGINE]
//     plist-bench make xml|binary SIZE OUT
//
// The first two print the median, the least and the first of N durations in nanoseconds, and on a
// second line the most memory that the process had at a time, in kilobytes.
#include <plist/plist.h>
#include <sys/resource.h>

#include <cstdint>
#include <cstdio>
#include <functional>
#include <stdexcept>
#include <string>

#include "bench/engine.h"
#include "bench/measure.h"
#include "bench/settings_file.h"
#include "platform/standin/files/file.h"
#include "platform/standin/plist/property_list.h"

namespace quillet::bench {
namespace {

constexpr std::uint64_t seed = 7;

void measureOften(const std::string& times, const std::function<bool()>& work) {
    print(measure(std::stoi(times), 1, [&] {
        if (!work()) throw std::runtime_error("the work cannot be done");
    }));
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    std::printf("%ld\n", usage.ru_maxrss);
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
    std::string bytes = standin::writePropertyList(settings(size, seed));
    if (form == "binary") bytes = inBinary(bytes);
    if (!standin::writeFileAtomically(out, bytes)) throw std::runtime_error("cannot write " + out);
}

void work(const Words& words) {
    const std::string command = wordAt(words, 0);
    if (command == "make") {
        make(wordAt(words, 1), std::stoul(wordAt(words, 2)), wordAt(words, 3));
    } else if (command == "get") {
        const Engine& engine = engines().at(wordAt(words, 3, "ours"));
        measureOften(wordAt(words, 2), [&] { return engine.get(words[1]); });
    } else if (command == "set") {
        const Engine& engine = engines().at(wordAt(words, 4, "ours"));
        measureOften(wordAt(words, 3), [&] { return engine.set(words[1], words[2]); });
    } else {
        throw std::runtime_error("get, set or make");
    }
}

}  // namespace
}  // namespace quillet::bench

int main(int count, char** arguments) {
    return quillet::bench::run(count, arguments, quillet::bench::work);
}
