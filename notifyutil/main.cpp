// SPDX-License-Identifier: MIT
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <stdexcept>

#include "notifyutil/client.h"
#include "notifyutil/request.h"
#include "program/signals.h"
#include "program/standard_streams.h"
#include "program/terminal.h"
#include "program/usage_error.h"

namespace quillet {

namespace {

constexpr int badUse = 2;

constexpr char help[] =
    R"(Usage: notifyutil [OPTION]...

Posts and awaits notifications of a device that lives in a folder, and reads and
sets their states. What is asked for is done from left to right.

What to do:
  -p NAME        post NAME
  -g NAME        print NAME and its state
  -s NAME VALUE  set NAME's state to VALUE, from 0 to 18446744073709551615
  -w NAME        report each post of NAME, until interrupted
  -N NAME        report N posts of NAME, such as -1 NAME; the program ends when
                 it has reported all that it waits for

How, for the whole line:
  -v             report with the time, NAME, its state and the kind of
                 registration, instead of NAME alone
  -q             print nothing but what -g prints
  -z MS          after each post, serve what waits for MS milliseconds
                 (default: 100)
  --root DIR     the folder that is the device's "/"; there must be a device
                 (default: $QUILLET_ROOT, or quillet/device below
                 $XDG_STATE_HOME or ~/.local/state)
  --color WHEN   auto (default), always or never

This program:
  -h, --help     print this help
  --version      print the version

Examples:
  notifyutil -g com.apple.springboard.ringerstate
  notifyutil -v -w com.apple.springboard.ringerstate
  notifyutil -s a.name 5 -p a.name

Exit status:
  0; 1 when the device cannot be used or its service failed in something; 2 for
  a bad command line
)";

int print(const char* text) {
    std::cout << text << std::flush;
    if (!std::cout) throw std::runtime_error("standard output cannot be written");
    return EXIT_SUCCESS;
}

int fulfil(const Request& request) {
    const auto helpFor = [&](int file) {
        return hasColors(request.color, file) ? withBoldHeadings(help) : help;
    };
    switch (request.kind) {
        case Request::Kind::help:
            return print(helpFor(STDOUT_FILENO).c_str());
        case Request::Kind::version:
            return print("notifyutil (Quillet) " QUILLET_VERSION "\n");
        case Request::Kind::operations:
            break;
    }
    if (request.operations.empty()) {
        std::cerr << helpFor(STDERR_FILENO);
        return badUse;
    }
    // Before the journal tells of a start, which is to have an end.
    holdSignals();
    return Client{request}.run() ? EXIT_SUCCESS : EXIT_FAILURE;
}

int runProgram(int argc, char** argv) {
    try {
        return fulfil(readRequest({argv + std::min(argc, 1), argv + argc}));
    } catch (const UsageError& error) {
        std::cerr << "notifyutil: " << error.what() << "\nTry \"notifyutil --help\".\n";
        return badUse;
    } catch (const std::exception& error) {
        std::cerr << "notifyutil: " << error.what() << '\n';
        return EXIT_FAILURE;
    }
}

}  // namespace

}  // namespace quillet

int main(int argc, char** argv) {
    quillet::holdStandardStreams();
    return quillet::runProgram(argc, argv);
}
