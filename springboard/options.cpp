// SPDX-License-Identifier: MIT
#include "springboard/options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdlib>
#include <stdexcept>

#include "springboard/arrange.h"
#include "springboard/command_line.h"
#include "springboard/usage_error.h"

namespace quillet {

namespace fs = std::filesystem;

namespace {

/// Below the user's state folder; empty when the environment names none.
fs::path defaultRoot() {
    const auto below = [](const char* variable, const char* rest) {
        const char* const folder = std::getenv(variable);
        return folder != nullptr && fs::path{folder}.is_absolute() ? fs::path{folder} / rest
                                                                   : fs::path{};
    };
    const fs::path root = below("XDG_STATE_HOME", "quillet/device");
    return root.empty() ? below("HOME", ".local/state/quillet/device") : root;
}

/// Where the device and the bundle are when the command line does not say it.
void completeOptions(Options& options) {
    if (options.root.empty()) options.root = defaultRoot();
    if (options.root.empty()) {
        throw UsageError("no --root given, and neither XDG_STATE_HOME nor HOME names a folder");
    }
    options.bundle =
        options.bundle.empty() ? bundleBeside("/proc/self/exe") : fs::absolute(options.bundle);
}

}  // namespace

fs::path bundleBeside(const fs::path& program) {
    std::error_code error;
    const fs::path found = fs::read_symlink(program, error);
    if (found.is_absolute()) return found.parent_path() / "Quillet.bundle";
    throw std::runtime_error(program.string() +
                             ": does not tell where this program is; --bundle must name a bundle");
}

Options parseOptions(int argc, char** argv) {
    Options options;
    CLI::App app;
    describe(app, options);
    try {
        std::vector<std::string> words = arrange(app, {argv + std::min(argc, 1), argv + argc});
        std::ranges::reverse(words);  // So CLI11 wants them.
        app.parse(words);
    } catch (const CLI::ParseError& error) {
        throw UsageError(error.what());
    }
    const bool needsDevice = options.command != Command::none && options.command != Command::print;
    if (needsDevice) completeOptions(options);
    return options;
}

}  // namespace quillet
