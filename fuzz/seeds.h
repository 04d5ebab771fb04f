// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace quillet::standin {

/// A file that the fuzzers begin with.
struct Seed {
    std::string name;
    std::string bytes;
};

/// Families of small files, in each of which one parameter of a form goes through its values.
std::vector<Seed> seeds();

}  // namespace quillet::standin
