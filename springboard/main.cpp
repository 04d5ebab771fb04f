// SPDX-License-Identifier: MIT
#include <unistd.h>

#include <cstdlib>
#include <exception>
#include <iostream>
#include <new>

#include "program/standard_streams.h"
#include "program/terminal.h"
#include "program/usage_error.h"
#include "springboard/options.h"

namespace quillet {

namespace {

constexpr int badUse = 2;
constexpr char outOfMemory[] = "springboard: out of memory\n";

/// In place of an exception for which there is no memory: abort() is for faults of the program.
[[noreturn]] void endWithoutException() {
    if (std::current_exception() != nullptr) std::abort();
    std::cerr << outOfMemory;
    _exit(EXIT_FAILURE);
}

int runProgram(int argc, char** argv) {
    try {
        const Options options = parseOptions(argc, argv);
        if (options.run) {
            options.run(options);
            return EXIT_SUCCESS;
        }
        const bool isColored = hasColors(options.color, STDERR_FILENO);
        std::cerr << (isColored ? withBoldHeadings(options.help) : options.help);
        return badUse;
    } catch (const UsageError& error) {
        std::cerr << "springboard: " << error.what() << "\nTry \"springboard --help\".\n";
        return badUse;
    } catch (const std::bad_alloc&) {
        std::cerr << outOfMemory;
        return EXIT_FAILURE;
    } catch (const std::exception& error) {
        std::cerr << "springboard: " << error.what() << '\n';
        return EXIT_FAILURE;
    }
}

}  // namespace

}  // namespace quillet

int main(int argc, char** argv) {
    std::set_terminate(quillet::endWithoutException);
    quillet::holdStandardStreams();
    return quillet::runProgram(argc, argv);
}
