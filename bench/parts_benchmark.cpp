// SPDX-License-Identifier: MIT
//
// The parts of the property-list engine one by one, by size in bytes.
#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "bench/settings_file.h"
#include "platform/standin/plist/base64.h"
#include "platform/standin/plist/plain_text.h"
#include "platform/standin/plist/property_list.h"

namespace quillet::bench {
namespace {

using standin::Dictionary;
using standin::Entry;

std::string document(const benchmark::State& state) {
    return standin::writePropertyList(settings(static_cast<std::size_t>(state.range(0)), 7));
}

void tellBytes(benchmark::State& state, std::size_t size) {
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(size));
}

void readXML(benchmark::State& state) {
    const std::string bytes = document(state);
    for (auto _ : state) benchmark::DoNotOptimize(standin::readXMLPropertyList(bytes));
    tellBytes(state, bytes.size());
}
BENCHMARK(readXML)->Range(4 << 10, 1 << 20);

void writeXML(benchmark::State& state) {
    const std::string bytes = document(state);
    const auto value = standin::readXMLPropertyList(bytes);
    for (auto _ : state) benchmark::DoNotOptimize(standin::writePropertyList(*value));
    tellBytes(state, bytes.size());
}
BENCHMARK(writeXML)->Range(4 << 10, 1 << 20);

void findPlainText(benchmark::State& state) {
    const std::string text(static_cast<std::size_t>(state.range(0)), 'a');
    for (auto _ : state) benchmark::DoNotOptimize(standin::plainLength(text));
    tellBytes(state, text.size());
}
BENCHMARK(findPlainText)->Range(8, 4 << 10);

void decodeDigits(benchmark::State& state) {
    std::string text(static_cast<std::size_t>(state.range(0)), 'A');
    std::string bytes(text.size(), '\0');
    for (auto _ : state) benchmark::DoNotOptimize(standin::decodeBase64(text, bytes.data()));
    tellBytes(state, text.size());
}
BENCHMARK(decodeDigits)->Range(64, 64 << 10);

void lookUp(benchmark::State& state) {
    std::vector<Entry> entries;
    for (int i = 0; i < state.range(0); ++i) entries.push_back({"key" + std::to_string(i), i});
    const Dictionary dictionary{entries};
    const std::string last = entries.back().key;
    for (auto _ : state) benchmark::DoNotOptimize(dictionary.find(last));
}
BENCHMARK(lookUp)->Range(8, 32 << 10);

}  // namespace
}  // namespace quillet::bench

BENCHMARK_MAIN();
