// SPDX-License-Identifier: MIT
#include "springboard/command_line.h"

#include <CLI/CLI.hpp>
#include <functional>
#include <string>
#include <utility>

#include "springboard/arguments.h"
#include "springboard/arrange.h"
#include "springboard/help.h"
#include "springboard/suggestion.h"
#include "springboard/usage_error.h"

namespace quillet {

namespace {

constexpr char description[] =
    "Loads the ringer switch as SpringBoard would, on a device that lives in a folder.";

constexpr char footer[] =
    R"(Words of --host, for the class that shows the indicator and the one that mutes:
  class        the class answers the message itself (indicator only)
  instance     the class has a shared instance, which answers the message
  no-instance  the class has no shared instance
  deaf         the shared instance does not know the message
  absent       there is no such class

Examples:
  springboard --root phone flip off       mute the phone that lives in "phone"
  springboard --root phone --trace flip   see what the switch does
  springboard --root phone watch          follow the switch while others flip it
  springboard help apply                  what the numbers mean

Exit status:
  0; 1 when the device or the bundle cannot be used or a flip did not come
  about; 2 for a bad command line
)";

constexpr char applyFooter[] = R"(The number:
  0            off: the state is stored, and the ringer muted
  1            on: the state is stored, and the ringer unmuted
  -1           no change is asked for
  any other    the ringer is unmuted, and no state stored
)";

using Take = std::function<void(const std::string&)>;

/// Adds an option, or the place of a word, of which the last argument counts.
CLI::Option& add(CLI::App& app, const char* name, const char* type, const char* meaning,
                 const Take& take) {
    const auto takeOne = [take](const CLI::results_t& arguments) {
        take(arguments.front());
        return true;
    };
    return *app.add_option(name, takeOne, meaning)->type_name(type)->take_last();
}

void addDeviceOptions(CLI::App& app, Options& options) {
    const auto addOne = [&](const char* name, const char* type, const char* meaning,
                            const Take& take) {
        add(app, name, type, meaning, take).group("The device");
    };
    addOne("--root", "DIR",
           "the folder that is the device's \"/\"; made, with a new phone's files, when absent "
           "(default: quillet/device below $XDG_STATE_HOME or ~/.local/state)",
           [&](auto& dir) { options.root = nonEmpty("--root", dir); });
    addOne("--bundle", "DIR", "the switch bundle (default: Quillet.bundle beside this program)",
           [&](auto& dir) { options.bundle = nonEmpty("--bundle", dir); });
    addOne("--machine", "NAME",
           "the device's model (default: iPhone6,1); an iPod's ringtone volume is "
           "saved and restored",
           [&](auto& name) { options.machine = machineName(name); });
    addOne("--host", "VARIANT",
           "what SpringBoard's classes are like, a list separated by commas of "
           "indicator=class|instance|no-instance|deaf|absent and "
           "media=instance|no-instance|deaf|absent (default: indicator=class,media=instance)",
           [&](auto& variant) { options.host = hostVariant(variant); });
}

void addTraceOptions(CLI::App& app, Options& options) {
    CLI::Option& trace = add(app, "--trace", optionalFile,
                             "write a line for each platform operation that the switch calls "
                             "(default: to standard error)",
                             [&](auto& file) {
                                 options.traces = true;
                                 options.traceFile = file;
                             });
    CLI::Option& format =
        add(app, "--trace-format", "FORMAT",
            "json (default): \"t\" in seconds, \"op\", \"receiver\" of a message, \"args\", and "
            "\"result\" where there is one; or text, for people",
            [&](auto& word) { options.traceFormat = traceFormat(word); });
    trace.group("What is printed");
    format.needs(&trace)->group("What is printed");
}

void addOtherOptions(CLI::App& app, Options& options) {
    app.add_flag("--json", options.json, "print states as JSON objects")->group("What is printed");
    add(app, "--color", "WHEN",
        "auto (default), always or never; auto is for terminals, but for dumb ones and when "
        "NO_COLOR is set",
        [&](auto& word) { options.color = color(word); })
        .group("What is printed");
    app.set_help_flag("-h,--help", "print this help, or that of the command before it")
        ->group("This program");
    app.add_flag("--version")->description("print the version")->group("This program");
}

/// Adds the place of a word to a command.
CLI::Option& addWord(CLI::App& command, const char* name, const char* type, const char* meaning,
                     const Take& take) {
    CLI::Option& word = add(command, name, type, meaning, take);
    word.group("Words");
    return word;
}

CLI::App& addCommand(CLI::App& app, const char* name, const char* meaning, Options& options,
                     Command command) {
    CLI::App& added = *app.add_subcommand(name, meaning);
    added.group("Commands")->footer(std::string{})->set_help_flag();
    added.callback([&options, command] { options.command = command; });
    return added;
}

void addSwitchCommands(CLI::App& app, Options& options) {
    addCommand(app, "state", R"(print the switch's state, "on" or "off")", options, Command::state);
    CLI::App& flip =
        addCommand(app, "flip", "turn the switch on or off, or tap it; print the new state",
                   options, Command::flip);
    addWord(flip, "on|off", "on or off",
            "the state to apply; without it, the opposite of what it is",
            [&](auto& word) { options.value = onOrOff(word); });
    CLI::App& apply = addCommand(
        app, "apply", "apply the state N, a 32-bit signed number; print the state afterwards",
        options, Command::apply);
    addWord(apply, "N", "a number", "the state to apply", [&](auto& word) {
        options.value = number(word);
    }).required();
    apply.footer(applyFooter);
    addCommand(app, "watch",
               R"(print "on" or "off" at each refresh of the switch, until interrupted)", options,
               Command::watch);
}

void addOwnCommands(CLI::App& app, Options& options) {
    CLI::App& help =
        addCommand(app, "help", "print this help, or that of a command", options, Command::print);
    addWord(help, "COMMAND", "a command", "the command to explain",
            [&](auto& name) { options.text = helpOf(commandNamed(app, name)); });
    addCommand(app, "version", "print the version", options, Command::print)
        .parse_complete_callback(
            [&] { options.text = "springboard (Quillet) " QUILLET_VERSION "\n"; });
}

}  // namespace

void describe(CLI::App& app, Options& options) {
    app.name("springboard")->description(description)->footer(footer)->fallthrough();
    addSwitchCommands(app, options);
    addOwnCommands(app, options);
    addDeviceOptions(app, options);
    addTraceOptions(app, options);
    addOtherOptions(app, options);
    options.text = helpOf(app);
}

}  // namespace quillet
