// SPDX-License-Identifier: MIT
#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <exception>
#include <iostream>
#include <stdexcept>

#include "springboard/host_process.h"
#include "springboard/options.h"
#include "springboard/usage_error.h"

namespace quillet {

namespace {

constexpr int badUse = 2;

constexpr char help[] = R"(Usage: springboard [options] COMMAND

Loads the ringer switch as SpringBoard would, on a device that lives in a folder.

Commands:
  state          print the switch's state, "on" or "off"
  flip [on|off]  turn the switch on or off, or tap it; print the new state
  apply N        apply the state N, a 32-bit signed number; print the state afterwards
  watch          print "on" or "off" at each refresh of the switch, until interrupted

Options:
  --root DIR       the device: the folder that is its "/"; made, with a new phone's files, when
                   absent (default: quillet/device below $XDG_STATE_HOME or ~/.local/state)
  --bundle DIR     the switch bundle (default: Quillet.bundle beside this program)
  --machine NAME   the device's model (default: iPhone6,1); iPods keep their ringtone volume
  --host VARIANT   what SpringBoard's classes are like, a list separated by commas of
                     indicator=class|instance|no-instance|deaf|absent
                     media=instance|no-instance|deaf|absent
                   (default: indicator=class,media=instance)
  --trace[=FILE]   write each platform operation that the switch calls as a line of JSON
                   (default: to standard error): "t" in seconds, "op", "receiver" of a message,
                   "args", and "result" where there is one
  --trace-format FORMAT
                   json (default), or text, a line for people at each operation
  --json           print states as JSON objects
  --version        print the version and exit
  --help           print this help and exit

Exit status: 0; 1 when the device or the bundle cannot be used; 2 for a bad command line.
)";

void run(const Options& options) {
    HostProcess process{options};
    switch (options.command) {
        case Command::state:
            return process.printState();
        case Command::watch:
            return process.watch();
        default:
            return process.apply(options.value);
    }
}

void printText(const char* text) {
    std::cout << text << std::flush;
    if (!std::cout) throw std::runtime_error("standard output cannot be written");
}

/// Puts something unwritable in place of the standard streams that are closed. A file of the device
/// would otherwise take their place when it is opened, and what is printed end up in it.
void holdStandardStreams() {
    int file = -1;
    do {
        file = open("/dev/null", O_RDONLY | O_CLOEXEC);
    } while (file >= 0 && file <= STDERR_FILENO);
    close(file);
}

int runProgram(int argc, char** argv) {
    try {
        const Options options = parseOptions(argc, argv);
        if (options.command == Command::help) {
            printText(help);
        } else if (options.command == Command::version) {
            printText("springboard (Quillet) " QUILLET_VERSION "\n");
        } else {
            run(options);
        }
        return EXIT_SUCCESS;
    } catch (const UsageError& error) {
        std::cerr << "springboard: " << error.what() << "\nTry \"springboard --help\".\n";
        return badUse;
    } catch (const std::exception& error) {
        std::cerr << "springboard: " << error.what() << '\n';
        return EXIT_FAILURE;
    }
}

}  // namespace

}  // namespace quillet

int main(int argc, char** argv) {
    quillet::holdStandardStreams();
    return quillet::runProgram(argc, argv);
}
