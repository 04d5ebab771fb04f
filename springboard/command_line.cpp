// SPDX-License-Identifier: MIT
#include "springboard/command_line.h"

#include <CLI/CLI.hpp>

#include "program/terminal.h"
#include "springboard/arguments.h"
#include "springboard/arrange.h"
#include "springboard/commands.h"
#include "springboard/help.h"

namespace quillet {

namespace {

constexpr char description[] =
    "Loads the ringer switch as SpringBoard would, on a device that lives in a folder.";

constexpr char footer[] =
    R"(Examples:
  springboard --root phone flip off       mute the phone that lives in "phone"
  springboard --root phone --trace flip   see what the switch does
  springboard --root phone watch          follow the switch while others flip it
  springboard plist print a.plist         see what a property list holds
  springboard help apply                  what the numbers mean

Exit status:
  0; 1 when the device, the bundle or a property list cannot be used or a
  flip did not come about; 2 for a bad command line
)";

void addDeviceOptions(CLI::App& app, Options& options) {
    const auto addOne = [&](const char* name, const char* type, const char* meaning,
                            const Take& take) {
        add(app, name, type, meaning, take).group("The device");
    };
    addOne("--root", "DIR",
           "the folder that is the device's \"/\"; made, with a new phone's files, when absent "
           "(default: $QUILLET_ROOT, or quillet/device below $XDG_STATE_HOME or ~/.local/state)",
           [&](auto& dir) { options.root = nonEmpty("--root", dir); });
    addOne("--bundle", "DIR", "the switch bundle (default: Quillet.bundle beside this program)",
           [&](auto& dir) { options.bundle = nonEmpty("--bundle", dir); });
    addOne("--machine", "NAME",
           "what this command takes for the device's model (default: what it is); see "
           "\"springboard help model\"",
           [&](auto& name) { options.machine = machineName(name); });
    addOne("--host", "VARIANT",
           "what this command takes SpringBoard's classes for (default: what they are); see "
           "\"springboard help host\"",
           [&](auto& variant) { options.host = hostVariant(variant); });
}

void addTraceOptions(CLI::App& app, Options& options) {
    CLI::Option& trace =
        add(app, "--trace", optionalFile,
            "write a record of each platform operation that the switch calls (default: to standard "
            "error; \"-\": to standard output)",
            [&](auto& file) {
                options.traces = true;
                options.traceFile = file;
            });
    CLI::Option& format =
        add(app, "--trace-format", "FORMAT",
            "json (default): \"t\" in seconds, \"op\", \"receiver\" of a message, \"args\", "
            "\"result\" where there is one, \"depth\" in other calls, and \"dur\" at the end of "
            "what lasted; text, for people; or chrome, for viewers of traces",
            [&](auto& word) { options.traceFormat = traceFormat(word); });
    offer(app, "--trace-format", {"json", "text", "chrome"});
    trace.group("What is printed");
    format.needs(&trace)->group("What is printed");
}

void addOtherOptions(CLI::App& app, Options& options) {
    app.add_flag("--json", options.json, "print JSON objects, errors too")
        ->group("What is printed");
    add(app, "--color", "WHEN",
        "auto (default), always or never; auto is for terminals, but for dumb ones and when "
        "NO_COLOR is set",
        [&](auto& word) { options.color = color(word); })
        .group("What is printed");
    offer(app, "--color", colorWords());
    app.set_help_flag("-h,--help", "print this help, or that of the command before it")
        ->group("This program");
    app.add_flag("--version")->description("print the version")->group("This program");
}

}  // namespace

void describe(CLI::App& app, Options& options) {
    app.name("springboard")->description(description)->footer(footer)->fallthrough();
    addSwitchCommands(app, options);
    addLookingCommands(app, options);
    addDeviceCommands(app, options);
    addPrefsCommands(app, options);
    addTraceCommands(app, options);
    addPlistCommands(app, options);
    addOwnCommands(app, options);
    addDeviceOptions(app, options);
    addTraceOptions(app, options);
    addOtherOptions(app, options);
    options.help = helpOf(app);
}

}  // namespace quillet
