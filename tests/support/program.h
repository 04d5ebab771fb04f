// SPDX-License-Identifier: MIT
#pragma once

#include <sys/types.h>

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace quillet::test {

using Words = std::vector<std::string>;

/// How a command of a user's ends.
struct Outcome {
    /// The exit status; the negative number of the signal when one ended the program.
    int status = 0;
    std::string output;
    std::string errors;
};

/// How a program is started: with the tests' own environment but for `unset`, in the working
/// folder `folder` if it names one.
struct Start {
    Words words;
    Words environment = {};
    Words unset = {};
    /// Where standard output and standard error go: files.
    std::filesystem::path output;
    std::filesystem::path errors;
    std::filesystem::path folder = {};
    /// Closes this descriptor instead: 0, 1 or 2.
    std::optional<int> closed = {};
    /// Has this process trace it; see ptrace(2).
    bool isTraced = false;
};

/// Has the signals that ask a process to end, or tell it that it cannot write, end this one,
/// whatever it was started with.
void takeSignals();

/// Starts the program of that path, which those signals end.
pid_t start(const std::filesystem::path& program, const Start& how);

/// Waits for a process's end; see Outcome for the answer.
int waitFor(pid_t process);

/// Runs a line of the shell's in the working folder `folder`, to its end.
Outcome runInShell(const std::string& line, const std::filesystem::path& folder = ".");

std::string readText(const std::filesystem::path& file);
void writeText(const std::filesystem::path& file, const std::string& text);

/// Whether `condition` becomes true within 20 s.
bool becomesTrue(const std::function<bool()>& condition);

/// The lines of a text that ends with a line's end.
Words linesOf(const std::string& text);

}  // namespace quillet::test
