// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "platform/standin/plist/value.h"
#include "tests/support/names.h"
#include "tests/support/program.h"
#include "tests/support/temporary_folder.h"

namespace quillet::test {

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

}  // namespace quillet::test
