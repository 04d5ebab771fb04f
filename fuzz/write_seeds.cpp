// SPDX-License-Identifier: MIT
//
// Writes the fuzzers' seeds into a folder.
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "fuzz/seeds.h"

int main(int count, char** arguments) {
    if (count != 2) {
        std::fprintf(stderr, "usage: fuzz_seeds FOLDER\n");
        return EXIT_FAILURE;
    }
    const std::filesystem::path folder{arguments[1]};
    std::filesystem::create_directories(folder);
    for (const auto& [name, bytes] : quillet::standin::seeds()) {
        if (!(std::ofstream{folder / name, std::ios::binary} << bytes)) return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}
