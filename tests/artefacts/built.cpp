// SPDX-License-Identifier: MIT
#include "tests/artefacts/built.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <sstream>

namespace quillet::test {

namespace {

// The time of the build, for whatever writes it down.
constexpr char time[] = "SOURCE_DATE_EPOCH=1700000000 ";

}  // namespace

Outcome run(const std::string& line) { return runInShell(line, QUILLET_ROOT); }

std::string textOf(const std::string& line) {
    const Outcome outcome = run(line);
    EXPECT_EQ(outcome.status, 0) << line << '\n' << outcome.errors;
    return outcome.output;
}

Words linesWith(const std::string& text, const std::string& part) {
    Words lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        if (line.find(part) == std::string::npos) continue;
        lines.push_back(line.substr(std::min(line.find_first_not_of(" \t"), line.size())));
    }
    return lines;
}

Words column(const std::string& text, size_t column) {
    Words words;
    for (const std::string& line : linesWith(text, "")) {
        std::istringstream stream(line);
        std::string word;
        for (size_t i = 0; i <= column; ++i) {
            if (!(stream >> word)) word.clear();
        }
        if (!word.empty()) words.push_back(word);
    }
    return words;
}

std::string builtFolder() {
    const char* const given = getenv("QUILLET_IOS_BUILD");
    return given == nullptr ? QUILLET_IOS_BUILD : given;
}

std::string builtModule(const std::string& architecture) {
    return builtFolder() + "/" + architecture + "/Quillet.bundle/Quillet";
}

std::string packages() {
    static const std::string made = textOf(makePackages(QUILLET_PACKAGES, builtFolder()));
    return QUILLET_PACKAGES;
}

std::string repository() {
    static const std::string made =
        textOf(makeRepository(QUILLET_PACKAGES "/source", builtFolder()));
    return QUILLET_PACKAGES "/source/repository";
}

std::string packageIn(const std::string& folder, const std::string& architecture) {
    return folder + "/com.velk.switch.ringer_" QUILLET_VERSION "_" + architecture + ".deb";
}

std::string makePackages(const std::string& folder, const std::string& bundles) {
    return time + ("BUNDLE_DIR=" + bundles) + " BUILD_DIR=" + folder + " script/package";
}

std::string makeRepository(const std::string& folder, const std::string& bundles) {
    return time + ("BUNDLE_DIR=" + bundles) + " BUILD_DIR=" + folder +
           " script/repository https://example.org/switches/";
}

}  // namespace quillet::test
