// SPDX-License-Identifier: MIT
#include <csignal>
#include <exception>
#include <functional>
#include <iostream>
#include <map>
#include <string>
#include <vector>

#include "tests/stress/faults.h"
#include "tests/stress/kills.h"
#include "tests/stress/turns.h"
#include "tests/support/temporary_folder.h"

namespace quillet::test {

namespace {

using Form = std::function<Tally(Extent, const std::filesystem::path&)>;

const std::map<std::string, Form> forms = {
    {"faults", tryFaults}, {"kills", tryKills}, {"turns", tryTurns}};

/// Whether all held.
bool run(const std::string& form, Extent extent) {
    const TemporaryFolder folder;
    const Tally tally = forms.at(form)(extent, folder.path());
    std::cout << tally.text() << std::flush;
    return !tally.hasFallen();
}

int runProgram(const std::vector<std::string>& words) {
    std::vector<std::string> wanted;
    Extent extent = Extent::full;
    for (std::size_t i = 0; i < words.size(); ++i) {
        const std::string& word = words[i];
        if (word == "--minutes" && i + 1 < words.size()) {
            stopSharingAfter(60 * std::stod(words[++i]));
        } else if (word == "--short" || word == "--long") {
            extent = word == "--short" ? Extent::brief : Extent::long_;
        } else if (forms.contains(word)) {
            wanted.push_back(word);
        } else {
            std::cerr << "stress: what is " << word << "?\n";
            return 2;
        }
    }
    bool holds = true;
    for (const std::string& form : wanted) holds = run(form, extent) && holds;
    return holds ? 0 : 1;
}

}  // namespace

}  // namespace quillet::test

int main(int argc, char** argv) {
    // What is started inherits them.
    for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGPIPE}) std::signal(number, SIG_DFL);
    try {
        return quillet::test::runProgram({argv + 1, argv + argc});
    } catch (const std::exception& error) {
        std::cerr << "stress: " << error.what() << '\n';
        return 1;
    }
}
