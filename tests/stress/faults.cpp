// SPDX-License-Identifier: MIT
#include "tests/stress/faults.h"

#include <chrono>
#include <map>
#include <memory>
#include <random>
#include <vector>

#include "tests/stress/commands.h"
#include "tests/stress/laboratory.h"
#include "tests/stress/system_calls.h"
#include "tests/stress/verdict.h"

namespace quillet::test {

namespace fs = std::filesystem;

namespace {

/// A fault of a command, at its first place: at each of the others it is tried, too.
struct Series {
    std::size_t command;
    Fault first;
};

std::string textOf(const Fault& fault) {
    const bool isCall = fault.kind == Fault::Kind::call;
    return (isCall ? std::string{systemCall(fault.call)->name} + " " + nameOf(fault.error)
                   : std::string{"allocation"}) +
           " at place " + std::to_string(fault.place) + (fault.isForEver ? " and on" : "");
}

/// The errors of a call that are tried; when brief one of them.
std::vector<int> errorsOf(const SystemCall& call, Extent extent) {
    std::vector<int> errors = call.errors;
    if (extent == Extent::brief && errors.size() > 1) errors.resize(1);
    return errors;
}

void addSeries(std::vector<Series>& all, std::size_t command, const Run& sound, Extent extent,
               Tally& tally) {
    // There are thousands, which what stands first does nearly all: the others only when long.
    const bool allocates = command < commandsThatWrite(Extent::brief).size();
    for (const bool isForEver : {false, true}) {
        if (!allocates && extent != Extent::long_) break;
        all.push_back({command, {.kind = Fault::Kind::allocation, .isForEver = isForEver}});
    }
    for (const long number : sound.calls) {
        const SystemCall* const call = systemCall(number);
        if (call == nullptr) {
            tally.fell("a system call is not known here", "number " + std::to_string(number));
            continue;
        }
        for (const int error : errorsOf(*call, extent)) {
            for (const bool isForEver : {false, true}) {
                all.push_back({command, {.call = number, .error = error, .isForEver = isForEver}});
            }
        }
    }
}

void judge(const Laboratory& laboratory, const Run& run, const std::string& faults, Tally& tally) {
    const std::string& name = laboratory.command().name;
    for (const std::string& wrong : wrongsOf(laboratory, run)) {
        tally.fell(name + " " + wrong, faults);
    }
}

/// How far a fault moves from place to place. When brief, few of a thousand allocations are tried,
/// and fewer calls that fail from there on, since those are much alike.
long stepOf(const Fault& fault, Extent extent) {
    if (extent != Extent::brief) return 1;
    if (fault.kind == Fault::Kind::allocation) return 193;
    return fault.isForEver ? 4 : 1;
}

/// Place after place, until there is none.
void tryAll(Laboratory& laboratory, Fault fault, Extent extent, Tally& tally) {
    const bool isCall = fault.kind == Fault::Kind::call;
    for (; !isTimeOver(); fault.place += stepOf(fault, extent)) {
        const Run run = laboratory.run({fault});
        if (run.injuries.empty() && !run.isLate) return;
        tally.tried((isCall ? "system calls failed, of " : "allocations failed, of ") +
                    laboratory.command().name);
        judge(laboratory, run, textOf(fault), tally);
    }
}

/// Two faults of any kind.
void tryPair(Laboratory& laboratory, const std::vector<Series>& series, std::size_t command,
             std::mt19937& chance, Tally& tally) {
    std::vector<Fault> own;
    for (const Series& one : series) {
        if (one.command == command) own.push_back(one.first);
    }
    const auto any = [&] {
        Fault fault = own[chance() % own.size()];
        fault.place = 1 + static_cast<long>(chance() % (fault.call < 0 ? 6000 : 30));
        return fault;
    };
    const std::vector<Fault> pair = {any(), any()};
    const Run run = laboratory.run(pair);
    tally.tried("pairs of faults, of " + laboratory.command().name);
    judge(laboratory, run, textOf(pair[0]) + " with " + textOf(pair[1]), tally);
}

/// What is tried in all; and each command without a fault, which must be sound by itself.
std::vector<Series> allSeries(const std::vector<Command>& commands, Extent extent,
                              const fs::path& folder, Tally& tally) {
    std::vector<Series> series;
    for (std::size_t i = 0; i < commands.size(); ++i) {
        Laboratory laboratory{commands[i], folder / ("sound" + std::to_string(i))};
        judge(laboratory, laboratory.run({}), "no fault at all", tally);
        addSeries(series, i, laboratory.sound(), extent, tally);
    }
    return series;
}

/// For hours.
Tally tryAllPairs(const std::vector<Command>& commands, const std::vector<Series>& series,
                  const fs::path& folder) {
    constexpr std::size_t batches = 800;
    constexpr int pairs = 500;
    return share(batches, folder, [&](std::size_t job, const fs::path& place, Tally& tally) {
        std::mt19937 chance{static_cast<unsigned>(job)};
        const std::size_t command = job % commands.size();
        Laboratory laboratory{commands[command], place};
        for (int i = 0; i < pairs && !isTimeOver(); ++i)
            tryPair(laboratory, series, command, chance, tally);
    });
}

}  // namespace

Tally tryFaults(Extent extent, const fs::path& folder) {
    const std::vector<Command> commands = commandsThatWrite(extent);
    Tally tally;
    const auto series = allSeries(commands, extent, folder, tally);
    tally.add(
        share(series.size(), folder, [&](std::size_t job, const fs::path& place, Tally& part) {
            Laboratory laboratory{commands[series[job].command], place};
            tryAll(laboratory, series[job].first, extent, part);
        }));
    if (extent == Extent::long_) tally.add(tryAllPairs(commands, series, folder));
    return tally;
}

}  // namespace quillet::test
