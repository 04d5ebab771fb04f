// SPDX-License-Identifier: MIT
#include "tests/stress/tally.h"

#include <sys/mman.h>

#include <algorithm>
#include <atomic>
#include <fstream>
#include <iostream>
#include <limits>
#include <memory>
#include <new>
#include <sstream>
#include <thread>
#include <vector>

#include "tests/support/child.h"
#include "tests/support/real_time.h"

namespace quillet::test {

namespace fs = std::filesystem;

namespace {

double lastMoment = std::numeric_limits<double>::infinity();

/// Another order of the numbers below `jobs`, which is smaller than the prime.
std::size_t scattered(std::size_t turn, std::size_t jobs) { return turn * 7919 % jobs; }

/// Every tenth of the way, but for the beginning.
void tellProgress(std::size_t turn, std::size_t jobs, double start) {
    constexpr double soon = 30;
    if (turn % std::max<std::size_t>(1, jobs / 10) != 0 || realNow() - start < soon) return;
    std::cerr << 100 * turn / jobs << " %\n";
}

/// In one line of a file.
std::string inOneLine(std::string text) {
    std::ranges::replace_if(
        text, [](char c) { return c == '\n' || c == '\t'; }, ' ');
    return text;
}

/// A number that processes share.
class SharedNumber {
public:
    SharedNumber()
        : memory_{mmap(nullptr, sizeof(Number), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS,
                       -1, 0)},
          number_{new (memory_) Number{0}} {}
    ~SharedNumber() { munmap(memory_, sizeof(Number)); }
    SharedNumber(const SharedNumber&) = delete;
    SharedNumber& operator=(const SharedNumber&) = delete;

    std::size_t take() { return number_->fetch_add(1); }

private:
    using Number = std::atomic<std::size_t>;

    void* memory_;
    Number* number_;
};

}  // namespace

void Tally::fell(const std::string& wrong, const std::string& example) {
    Fallen& fallen = fallen_[inOneLine(wrong)];
    if (fallen.times++ == 0) fallen.example = inOneLine(example);
}

std::string Tally::text() const {
    std::ostringstream text;
    for (const auto& [what, times] : tried_) text << "tried  " << times << ' ' << what << '\n';
    for (const auto& [wrong, fallen] : fallen_) {
        text << "FELL   " << wrong << ": " << fallen.times << " times, so with " << fallen.example
             << '\n';
    }
    return text.str();
}

void Tally::add(const Tally& other) {
    for (const auto& [what, times] : other.tried_) tried_[what] += times;
    for (const auto& [wrong, fallen] : other.fallen_) {
        Fallen& here = fallen_[wrong];
        if (here.times == 0) here.example = fallen.example;
        here.times += fallen.times;
    }
}

void Tally::write(const fs::path& file) const {
    std::ofstream text{file};
    for (const auto& [what, times] : tried_) text << what << '\t' << times << '\n';
    text << '\n';
    for (const auto& [wrong, fallen] : fallen_) {
        text << wrong << '\t' << fallen.times << '\t' << fallen.example << '\n';
    }
}

Tally Tally::read(const fs::path& file) {
    Tally tally;
    std::ifstream text{file};
    bool hasFallen = false;
    for (std::string line; std::getline(text, line);) {
        hasFallen = hasFallen || line.empty();
        if (line.empty()) continue;
        std::istringstream fields{line};
        std::string name;
        std::string times;
        std::string example;
        std::getline(fields, name, '\t');
        std::getline(fields, times, '\t');
        std::getline(fields, example);
        if (hasFallen) {
            tally.fallen_[name] = {std::stol(times), example};
        } else {
            tally.tried_[name] = std::stol(times);
        }
    }
    return tally;
}

void stopSharingAfter(double seconds) { lastMoment = realNow() + seconds; }

bool isTimeOver() { return realNow() > lastMoment; }

Tally share(std::size_t jobs, const fs::path& folder,
            const std::function<void(std::size_t, const fs::path&, Tally&)>& work) {
    // More than there are processors: a program that waits needs none.
    const std::size_t crew = std::max<std::size_t>(2, 2UL * std::thread::hardware_concurrency());
    const double start = realNow();
    SharedNumber next;
    std::vector<std::unique_ptr<Child>> workers;
    for (std::size_t i = 0; i < crew; ++i) {
        const fs::path place = folder / std::to_string(i);
        fs::create_directories(place);
        workers.push_back(std::make_unique<Child>([&, place] {
            Tally tally;
            for (std::size_t turn = next.take(); turn < jobs; turn = next.take()) {
                if (isTimeOver()) {
                    tally.tried("parts left out for want of time");
                    continue;
                }
                tellProgress(turn, jobs, start);
                const std::size_t job = scattered(turn, jobs);
                work(job, place / std::to_string(job), tally);
                fs::remove_all(place / std::to_string(job));
                if (isTimeOver()) tally.tried("parts cut short for want of time");
            }
            tally.write(place / "tally");
            return 0;
        }));
    }
    Tally all;
    for (std::size_t i = 0; i < crew; ++i) {
        if (workers[i]->wait() != 0) all.fell("the stress itself ends", "a worker");
        all.add(Tally::read(folder / std::to_string(i) / "tally"));
    }
    return all;
}

}  // namespace quillet::test
