// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <functional>
#include <map>
#include <string>

namespace quillet::test {

/// What was tried, and what fell.
class Tally {
public:
    void tried(const std::string& what, long times = 1) { tried_[what] += times; }
    /// `wrong` in a few words, of which there are many alike; `example` is how one came about.
    void fell(const std::string& wrong, const std::string& example);

    bool hasFallen() const { return !fallen_.empty(); }
    /// For people: what was tried, then what fell.
    std::string text() const;

    void add(const Tally& other);
    /// To another process, and from it.
    void write(const std::filesystem::path& file) const;
    static Tally read(const std::filesystem::path& file);

private:
    struct Fallen {
        long times = 0;
        std::string example;
    };

    std::map<std::string, long> tried_;
    std::map<std::string, Fallen> fallen_;
};

/// From now on there are so many seconds left for all jobs.
void stopSharingAfter(double seconds);
/// Whether they are over, and a job is to end.
bool isTimeOver();

/// Does the jobs numbered from 0 to `jobs` - 1, in several processes, each with a folder of its own
/// below `folder`. A process that dies has fallen. Neighbours are not done one after the other, so
/// that some of all kinds are done when the time is over; those that are cut short or left out then
/// are counted. Tells on standard error how far it is when that takes long.
Tally share(std::size_t jobs, const std::filesystem::path& folder,
            const std::function<void(std::size_t job, const std::filesystem::path&, Tally&)>& work);

}  // namespace quillet::test
