// SPDX-License-Identifier: MIT
#include <unistd.h>

#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "program/terminal.h"
#include "springboard/arrange.h"
#include "springboard/commands.h"
#include "springboard/help.h"

namespace quillet {

namespace {

void print(const std::string& text) {
    std::cout << text << std::flush;
    if (!std::cout) throw std::runtime_error("standard output cannot be written");
}

void printHelp(const std::string& help, Color color) {
    print(hasColors(color, STDOUT_FILENO) ? withBoldHeadings(help) : help);
}

}  // namespace

void addOwnCommands(CLI::App& app, Options& options) {
    const auto text = std::make_shared<std::string>();
    CLI::App& help = addCommand(app, "help", "print this help, or that of a command", options,
                                [text](const Options& chosen) {
                                    printHelp(text->empty() ? chosen.help : *text, chosen.color);
                                });
    addWords(help, "COMMAND", "a command", "the command to explain",
             [text, &app](auto& names) { *text = helpOf(commandNamed(app, names)); });
    addCommand(app, "version", "print the version", options,
               [](const Options&) { print("springboard (Quillet) " QUILLET_VERSION "\n"); });
}

}  // namespace quillet
