// SPDX-License-Identifier: MIT
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <iostream>
#include <new>

#include "program/help_text.h"
#include "program/standard_streams.h"
#include "program/usage_error.h"
#include "springboard/messages.h"
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

/// Whether errors are to be told as JSON, also those of a command line that makes no sense.
bool wantsJSON(int argc, char** argv) {
    const auto is = [](const char* word) {
        return [word](const char* other) { return std::strcmp(word, other) == 0; };
    };
    char** const end = std::find_if(argv, argv + argc, is("--"));
    return std::any_of(argv, end, is("--json"));
}

int runProgram(int argc, char** argv) {
    const bool json = wantsJSON(argc, argv);
    try {
        const Options options = parseOptions(argc, argv);
        if (options.run) {
            options.run(options);
            return EXIT_SUCCESS;
        }
        std::cerr << helpFor(STDERR_FILENO, options.color, options.help);
        return badUse;
    } catch (const UsageError& error) {
        sayError(json, error.what());
        if (!json) std::cerr << "Try \"springboard --help\".\n";
        return badUse;
    } catch (const AlreadySaid&) {
        return EXIT_FAILURE;
    } catch (const std::bad_alloc&) {
        std::cerr << outOfMemory;
        return EXIT_FAILURE;
    } catch (const std::exception& error) {
        sayError(json, error.what());
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
