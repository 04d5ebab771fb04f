// SPDX-License-Identifier: MIT
#include "notifyutil/options.h"

#include <sstream>

#include "platform/standin/device/root.h"
#include "program/help_text.h"
#include "program/terminal.h"

namespace quillet {

namespace {

constexpr char description[] =
    "Posts and awaits notifications of a device that lives in a folder, and reads and sets their "
    "states. What is asked for is done from left to right.";

/// Options with what follows them, and what they mean.
struct Group {
    const char* heading;
    std::vector<HelpRow> rows;
    /// Giving one several times asks for several things.
    bool mayRepeat = false;
};

const std::vector<Group>& groups() {
    static const std::vector<Group> all = {
        {"What to do",
         {{"-p NAME", "post NAME"},
          {"-g NAME", "print NAME and its state"},
          {"-s NAME VALUE", "set NAME's state to VALUE, from 0 to 18446744073709551615"},
          {"-w NAME", "report each post of NAME, until interrupted"},
          {"-N NAME",
           "report N posts of NAME, such as -1 NAME; the program ends when it has reported all "
           "that it waits for"}},
         true},
        {"How, for the whole line",
         {{"-v",
           "report with the time, NAME, its state and the kind of registration, instead of NAME "
           "alone"},
          {"-q", "print nothing but what -g prints"},
          {"-z MS", "after each post, serve what waits for MS milliseconds (default: 100)"},
          {"--root DIR",
           "the folder that is the device's \"/\"; there must be a device (default: $QUILLET_ROOT, "
           "or quillet/device below $XDG_STATE_HOME or ~/.local/state)"},
          {"--color WHEN", "auto (default), always or never"}}},
        {"This program",
         {{"-h, --help", "print this help"},
          {"--version", "print the version"},
          {"--completion SHELL",
           "print a script by which bash, zsh or fish completes command lines"}}}};
    return all;
}

constexpr char footer[] = R"(
Examples:
  notifyutil -g com.apple.springboard.ringerstate
  notifyutil -v -w com.apple.springboard.ringerstate
  notifyutil -s a.name 5 -p a.name

Exit status:
  0; 1 when the device cannot be used or its service failed in something; 2 for
  a bad command line
)";

OfferedArgument argumentCalled(const std::string& name) {
    OfferedArgument argument{.name = name, .isFolder = name == "DIR"};
    if (name == "NAME") argument.words = {standin::DeviceRoot::ringerStateName};
    if (name == "WHEN") argument.words = colorWords();
    if (name == "SHELL") argument.words = shells();
    return argument;
}

OfferedOption offerOf(const HelpRow& row, bool mayRepeat) {
    OfferedOption offer{.meaning = inShort(row.second), .mayRepeat = mayRepeat};
    std::istringstream term{row.first};
    for (std::string word; term >> word;) {
        if (word.ends_with(',')) word.pop_back();
        // The count is the option; one is what one mostly waits for.
        if (word == "-N") word = "-1";
        if (word.starts_with('-')) {
            offer.names.push_back(word);
        } else if (!offer.hasArgument) {
            offer.hasArgument = true;
            offer.argument = argumentCalled(word);
        }
    }
    return offer;
}

}  // namespace

std::string helpText() {
    std::string text = "Usage: notifyutil [OPTION]...\n\n" + wrapped(description, 0);
    for (const Group& group : groups()) text += helpTable(group.heading, group.rows);
    return text + footer;
}

OfferedCommand offers() {
    OfferedCommand program{.name = "notifyutil"};
    for (const Group& group : groups()) {
        for (const HelpRow& row : group.rows) {
            program.options.push_back(offerOf(row, group.mayRepeat));
        }
    }
    return program;
}

std::vector<std::string> longOptions() {
    std::vector<std::string> names;
    for (const OfferedOption& option : offers().options) {
        for (const std::string& name : option.names) {
            if (name.starts_with("--")) names.push_back(name);
        }
    }
    return names;
}

}  // namespace quillet
