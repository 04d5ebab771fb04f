// SPDX-License-Identifier: MIT
#include "springboard/options.h"

#include <getopt.h>

#include <array>
#include <charconv>
#include <cstdlib>
#include <string_view>

namespace quillet {

namespace fs = std::filesystem;

namespace {

/// uname's field holds 255 bytes and a NUL.
constexpr std::size_t maxMachineLength = 255;

enum Letter : int { root = 'r', bundle, machine, host, trace, json, version, help };

constexpr std::array<option, 9> longOptions = {{
    {"root", required_argument, nullptr, Letter::root},
    {"bundle", required_argument, nullptr, Letter::bundle},
    {"machine", required_argument, nullptr, Letter::machine},
    {"host", required_argument, nullptr, Letter::host},
    {"trace", optional_argument, nullptr, Letter::trace},
    {"json", no_argument, nullptr, Letter::json},
    {"version", no_argument, nullptr, Letter::version},
    {"help", no_argument, nullptr, Letter::help},
    {nullptr, 0, nullptr, 0},
}};

std::string quoted(std::string_view word) { return "\"" + std::string{word} + "\""; }

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
    if (!host) throw UsageError("no such host variant: " + quoted(variant));
    return *host;
}

void setTrace(Options& options, const char* file) {
    options.traces = true;
    options.traceFile = file == nullptr ? fs::path{} : nonEmpty("--trace=FILE", file);
}

void apply(Options& options, int letter, const char* argument) {
    switch (letter) {
        case Letter::root:
            options.root = nonEmpty("--root", argument);
            break;
        case Letter::bundle:
            options.bundle = nonEmpty("--bundle", argument);
            break;
        case Letter::machine:
            options.machine = machineName(argument);
            break;
        case Letter::host:
            options.host = hostVariant(argument);
            break;
        case Letter::trace:
            setTrace(options, argument);
            break;
        case Letter::json:
            options.json = true;
            break;
        default:
            break;
    }
}

/// What getopt made of a word that is no option of ours, or lacks its argument or has one too many.
UsageError badOption(int letter, std::string_view word) {
    if (letter == ':') return UsageError("option " + quoted(word) + " needs an argument");
    // getopt sets optopt for an option that it knows.
    if (optopt != 0 && word.starts_with("--")) {
        return UsageError("option takes no argument: " + quoted(word));
    }
    return UsageError("no such option: " + quoted(word));
}

/// Whether a word before "--" is none of the options: negative numbers are values for apply.
bool isOperand(std::string_view word) {
    const bool isNumber = word.size() > 1 && word[1] >= '0' && word[1] <= '9';
    return !word.starts_with('-') || word == "-" || isNumber;
}

/// Splits the command line into options, which it applies, and other words. The answer is the
/// letter of --help or --version if one of them is asked for.
int parseWords(Options& options, int argc, char** argv, std::vector<std::string_view>& words) {
    opterr = 0;
    optind = 1;
    bool optionsHaveEnded = false;
    while (optind < argc) {
        const std::string_view word = argv[optind];
        if (!optionsHaveEnded && word == "--") {
            optionsHaveEnded = true;
            ++optind;
        } else if (optionsHaveEnded || isOperand(word)) {
            words.push_back(word);
            ++optind;
        } else {
            const int letter = getopt_long(argc, argv, "+:", longOptions.data(), nullptr);
            if (letter == Letter::help || letter == Letter::version) return letter;
            if (letter == '?' || letter == ':') throw badOption(letter, word);
            apply(options, letter, optarg);
        }
    }
    return 0;
}

std::int32_t number(std::string_view word) {
    std::int32_t value = 0;
    const std::string_view digits = word.starts_with('+') ? word.substr(1) : word;
    const auto [end, error] = std::from_chars(digits.begin(), digits.end(), value);
    if (error != std::errc{} || end != digits.end() ||
        digits.starts_with('-') != (word[0] == '-')) {
        throw UsageError("not a 32-bit signed number: " + quoted(word));
    }
    return value;
}

std::int32_t onOrOff(std::string_view word) {
    if (word != "on" && word != "off") throw UsageError("neither on nor off: " + quoted(word));
    return word == "on" ? 1 : 0;
}

void setCommand(Options& options, const std::vector<std::string_view>& words) {
    if (words.empty()) throw UsageError("no command given");
    const std::string_view name = words[0];
    std::size_t most = 1;
    if (name == "state") {
        options.command = Command::state;
    } else if (name == "watch") {
        options.command = Command::watch;
    } else if (name == "flip") {
        options.command = Command::flip;
        most = 2;
        if (words.size() > 1) options.value = onOrOff(words[1]);
    } else if (name == "apply") {
        options.command = Command::apply;
        most = 2;
        if (words.size() < 2) throw UsageError("apply needs a number");
        options.value = number(words[1]);
    } else {
        throw UsageError("no such command: " + quoted(name));
    }
    if (words.size() > most) throw UsageError("unexpected word: " + quoted(words[most]));
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

}  // namespace

Options parseOptions(int argc, char** argv) {
    Options options;
    std::vector<std::string_view> words;
    const int only = parseWords(options, argc, argv, words);
    if (only != 0) {
        options.command = only == Letter::help ? Command::help : Command::version;
        return options;
    }
    setCommand(options, words);
    if (options.root.empty()) options.root = defaultRoot();
    if (options.root.empty()) {
        throw UsageError("no --root given, and neither XDG_STATE_HOME nor HOME names a folder");
    }
    if (options.bundle.empty()) options.bundle = defaultBundle();
    return options;
}

}  // namespace quillet
