// SPDX-License-Identifier: MIT
//
// What the fuzzers begin with, and what they have found, goes through their checks.
#include "fuzz/checks.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <vector>

#include "fuzz/seeds.h"
#include "tests/support/program.h"

namespace quillet::standin {
namespace {

namespace fs = std::filesystem;

/// No folder is there while nothing is kept in it.
std::vector<Seed> findings() {
    std::vector<Seed> all;
    if (!fs::exists(QUILLET_FINDINGS)) return all;
    for (const auto& file : fs::directory_iterator{QUILLET_FINDINGS}) {
        all.push_back({file.path().filename(), test::readText(file.path())});
    }
    return all;
}

TEST(Checks, EverySeedAndEveryFindingPassesAllOfThem) {
    auto files = seeds();
    for (Seed& finding : findings()) files.push_back(std::move(finding));
    for (const auto& [name, bytes] : files) {
        for (const Check& check : checks()) {
            EXPECT_NO_THROW(check.isPassedBy(bytes)) << name << ", " << check.name;
        }
    }
}

}  // namespace
}  // namespace quillet::standin
