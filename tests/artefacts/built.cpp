// SPDX-License-Identifier: MIT
#include "tests/artefacts/built.h"

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <sstream>

namespace quillet::test {

Outcome run(const std::string& command) {
    FILE* const pipe = popen(("cd '" QUILLET_ROOT "' && " + command).c_str(), "r");
    if (pipe == nullptr) return {};
    Outcome outcome;
    std::array<char, 4096> buffer = {};
    while (const size_t size = fread(buffer.data(), 1, buffer.size(), pipe)) {
        outcome.text.append(buffer.data(), size);
    }
    const int status = pclose(pipe);
    outcome.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return outcome;
}

std::string textOf(const std::string& command) {
    const Outcome outcome = run(command);
    EXPECT_EQ(outcome.status, 0) << command;
    return outcome.text;
}

std::vector<std::string> linesWith(const std::string& text, const std::string& part) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        if (line.find(part) == std::string::npos) continue;
        lines.push_back(line.substr(std::min(line.find_first_not_of(" \t"), line.size())));
    }
    return lines;
}

std::vector<std::string> column(const std::string& text, size_t column) {
    std::vector<std::string> words;
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

const std::string& builtFolder() {
    static const std::string folder = [] {
        if (const char* const given = getenv("QUILLET_IOS_BUILD")) return std::string(given);
        if (run("BUILD_DIR='" QUILLET_IOS_BUILD "' script/package").status != 0) {
            fputs("script/package failed; nothing to test\n", stderr);
            exit(EXIT_FAILURE);
        }
        return std::string(QUILLET_IOS_BUILD);
    }();
    return folder;
}

std::string builtModule(const std::string& architecture) {
    return builtFolder() + "/" + architecture + "/Quillet.bundle/Quillet";
}

std::string packageIn(const std::string& folder, const std::string& architecture) {
    return folder + "/com.velk.switch.ringer_" QUILLET_VERSION "_" + architecture + ".deb";
}

}  // namespace quillet::test
