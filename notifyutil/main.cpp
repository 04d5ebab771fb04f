// SPDX-License-Identifier: MIT
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <exception>
#include <iostream>

#include "notifyutil/client.h"
#include "notifyutil/options.h"
#include "notifyutil/request.h"
#include "program/completion.h"
#include "program/help_text.h"
#include "program/output.h"
#include "program/signals.h"
#include "program/standard_streams.h"
#include "program/usage_error.h"

namespace quillet {

namespace {

constexpr int badUse = 2;

int fulfil(const Request& request) {
    switch (request.kind) {
        case Request::Kind::help:
            print(helpFor(STDOUT_FILENO, request.color, helpText()));
            return EXIT_SUCCESS;
        case Request::Kind::version:
            print("notifyutil (Quillet) " QUILLET_VERSION "\n");
            return EXIT_SUCCESS;
        case Request::Kind::completion:
            print(completionScript(offers(), request.shell));
            return EXIT_SUCCESS;
        case Request::Kind::operations:
            break;
    }
    if (request.operations.empty()) {
        std::cerr << helpFor(STDERR_FILENO, request.color, helpText());
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
