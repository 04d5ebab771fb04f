// SPDX-License-Identifier: MIT
#include "springboard/options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <functional>
#include <memory>
#include <string_view>
#include <utility>

#include "springboard/arrange.h"
#include "springboard/usage_error.h"

namespace quillet {

namespace fs = std::filesystem;

namespace {

/// uname's field holds 255 bytes and a NUL.
constexpr std::size_t maxMachineLength = 255;

fs::path nonEmpty(const char* option, std::string_view argument) {
    if (argument.empty()) throw UsageError(std::string{option} + " needs a name");
    return argument;
}

std::string machineName(std::string_view name) {
    if (name.empty() || name.size() > maxMachineLength) {
        throw UsageError("--machine needs a name of 1 to 255 bytes");
    }
    return std::string{name};
}

standin::HostVariant hostVariant(std::string_view variant) {
    const auto host = standin::parseHostVariant(variant);
    if (!host) throw UsageError("no such host variant: " + inQuotes(variant));
    return *host;
}

TraceFormat traceFormat(std::string_view word) {
    if (word != "json" && word != "text")
        throw UsageError("no such trace format: " + inQuotes(word));
    return word == "json" ? TraceFormat::json : TraceFormat::text;
}

std::int32_t number(std::string_view word) {
    std::int32_t value = 0;
    const std::string_view digits = word.starts_with('+') ? word.substr(1) : word;
    const auto [end, error] = std::from_chars(digits.begin(), digits.end(), value);
    if (error != std::errc{} || end != digits.end() ||
        digits.starts_with('-') != (word[0] == '-')) {
        throw UsageError("not a 32-bit signed number: " + inQuotes(word));
    }
    return value;
}

std::int32_t onOrOff(std::string_view word) {
    if (word != "on" && word != "off") throw UsageError("neither on nor off: " + inQuotes(word));
    return word == "on" ? 1 : 0;
}

/// Adds an option, or the place of a word, of which the last argument counts.
CLI::Option* add(CLI::App& app, const char* name, const char* type,
                 std::function<void(const std::string&)> take) {
    const auto takeOne = [take = std::move(take)](const CLI::results_t& arguments) {
        take(arguments.front());
        return true;
    };
    return app.add_option(name, takeOne)->type_name(type)->take_last();
}

void addOptions(CLI::App& app, Options& options) {
    app.set_help_flag("--help");
    app.set_version_flag("--version", QUILLET_VERSION);
    app.add_flag("--json", options.json);
    add(app, "--root", "DIR", [&](auto& dir) { options.root = nonEmpty("--root", dir); });
    add(app, "--bundle", "DIR", [&](auto& dir) { options.bundle = nonEmpty("--bundle", dir); });
    add(app, "--machine", "NAME", [&](auto& name) { options.machine = machineName(name); });
    add(app, "--host", "VARIANT", [&](auto& variant) { options.host = hostVariant(variant); });
    CLI::Option* const trace = add(app, "--trace", optionalFile, [&](auto& file) {
        options.traces = true;
        options.traceFile = file;
    });
    add(app, "--trace-format", "FORMAT", [&](auto& word) {
        options.traceFormat = traceFormat(word);
    })->needs(trace);
}

CLI::App& addCommand(CLI::App& app, const char* name, Options& options, Command command) {
    return *app.add_subcommand(name)->callback([&options, command] { options.command = command; });
}

void addCommands(CLI::App& app, Options& options) {
    addCommand(app, "state", options, Command::state);
    addCommand(app, "watch", options, Command::watch);
    CLI::App& flip = addCommand(app, "flip", options, Command::flip);
    add(flip, "state", "on or off", [&](auto& word) { options.value = onOrOff(word); });
    CLI::App& apply = addCommand(app, "apply", options, Command::apply);
    add(apply, "state", "a number", [&](auto& word) { options.value = number(word); })->required();
}

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

/// Beside this program.
fs::path defaultBundle() {
    std::error_code error;
    return fs::read_symlink("/proc/self/exe", error).parent_path() / "Quillet.bundle";
}

/// Where the device and the bundle are when the command line does not say it.
void completeOptions(Options& options) {
    if (options.root.empty()) options.root = defaultRoot();
    if (options.root.empty()) {
        throw UsageError("no --root given, and neither XDG_STATE_HOME nor HOME names a folder");
    }
    if (options.bundle.empty()) options.bundle = defaultBundle();
}

}  // namespace

Options parseOptions(int argc, char** argv) {
    Options options;
    CLI::App app;
    app.fallthrough();
    addOptions(app, options);
    addCommands(app, options);
    try {
        std::vector<std::string> words = arrange(app, {argv + std::min(argc, 1), argv + argc});
        std::ranges::reverse(words);  // So CLI11 wants them.
        app.parse(words);
    } catch (const CLI::CallForHelp&) {
        options.command = Command::help;
        return options;
    } catch (const CLI::CallForVersion&) {
        options.command = Command::version;
        return options;
    } catch (const CLI::ParseError& error) {
        throw UsageError(error.what());
    }
    completeOptions(options);
    return options;
}

}  // namespace quillet
