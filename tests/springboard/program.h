// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>
#include <sys/types.h>

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/standin/plist/value.h"
#include "tests/support/temporary_folder.h"

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
};

/// Starts the program of that path.
pid_t start(const std::filesystem::path& program, const Start& how);

/// Waits for a process's end; see Outcome for the answer.
int waitFor(pid_t process);

/// A test that runs the host program as a user does, on a device of its own whose switch leaves
/// vibration to the system, so that a flip takes no time.
class SpringBoard : public testing::Test {
protected:
    SpringBoard();

    /// Runs `springboard` with --root and these words.
    Outcome run(Words words);
    /// The same without --root.
    Outcome runBare(Start how);

    /// Runs `springboard` with --root, and expects it to print `output` and nothing else.
    void expectOutput(const Words& words, const std::string& output);
    /// Expects exit status `status`, nothing on standard output, and a message that contains
    /// `message` on standard error.
    void expectFailure(const Outcome& outcome, int status, const std::string& message);

    /// Files of the device, by their paths on it.
    std::filesystem::path onDevice(const std::string& path) const;
    void write(const std::string& path, const standin::Value& value) const;
    std::string bytes(const std::string& path) const;
    standin::Dictionary dictionary(const std::string& path) const;

    std::filesystem::path folder() const { return folder_.path(); }
    std::filesystem::path root() const { return folder() / "root"; }

private:
    TemporaryFolder folder_;
};

inline constexpr char preferencesPath[] =
    "/var/mobile/Library/Preferences/com.velk.switch.ringer.plist";
inline constexpr char springBoardPath[] =
    "/var/mobile/Library/Preferences/com.apple.springboard.plist";

std::string readText(const std::filesystem::path& file);
void writeText(const std::filesystem::path& file, const std::string& text);

/// Whether `condition` becomes true within 20 s.
bool becomesTrue(const std::function<bool()>& condition);

/// The lines of a text that ends with a line's end.
Words linesOf(const std::string& text);

}  // namespace quillet::test
