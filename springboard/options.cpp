// SPDX-License-Identifier: MIT
#include "springboard/options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <stdexcept>

#include "program/default_root.h"
#include "program/usage_error.h"
#include "springboard/arrange.h"
#include "springboard/command_line.h"

namespace quillet {

namespace fs = std::filesystem;

fs::path rootOf(const Options& options) {
    return options.root.empty() ? defaultRoot() : options.root;
}

fs::path bundleOf(const Options& options) {
    return options.bundle.empty() ? bundleBeside("/proc/self/exe") : fs::absolute(options.bundle);
}

fs::path bundleBeside(const fs::path& program) {
    std::error_code error;
    const fs::path found = fs::read_symlink(program, error);
    if (found.is_absolute()) return found.parent_path() / "Quillet.bundle";
    throw std::runtime_error(program.string() +
                             ": does not tell where this program is; --bundle must name a bundle");
}

namespace {

/// The commands and words of an arranged line, without the options between them.
std::string commandIn(const std::vector<std::string>& words) {
    const auto isOption = [](const std::string& word) { return word.starts_with("--"); };
    const auto options = std::ranges::find_if(words, isOption);
    const auto mark = std::ranges::find(words, "--");
    std::string command;
    const auto add = [&](const std::string& word) {
        command += (command.empty() ? "" : " ") + word;
    };
    std::for_each(words.begin(), options, add);
    if (mark != words.end()) std::for_each(mark + 1, words.end(), add);
    return command;
}

}  // namespace

Options parseOptions(int argc, char** argv) {
    Options options;
    CLI::App app;
    describe(app, options);
    try {
        std::vector<std::string> words = arrange(app, {argv + std::min(argc, 1), argv + argc});
        options.command = commandIn(words);
        std::ranges::reverse(words);  // So CLI11 wants them.
        app.parse(words);
    } catch (const CLI::ParseError& error) {
        throw UsageError(error.what());
    }
    return options;
}

}  // namespace quillet
