// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace quillet::test {

/// What a shell command leaves behind.
struct Outcome {
    int status = -1;
    std::string text;
};

/// Runs `command` in the project's folder. Its error stream is not part of the text unless the
/// command puts it there.
Outcome run(const std::string& command);

/// The text of a command that must succeed; the test fails when it does not.
std::string textOf(const std::string& command);

/// The lines of `text` that hold `part`, without leading white space.
std::vector<std::string> linesWith(const std::string& text, const std::string& part);

/// The words in column `column`, counted from 0, of all lines of `text` that have so many.
std::vector<std::string> column(const std::string& text, size_t column);

/// The folder with the device build: made by script/package at the first call of the process, or
/// the one that $QUILLET_IOS_BUILD names.
const std::string& builtFolder();

/// The module of one architecture, the universal one for an empty `architecture`, or the one for
/// the packages: "device" or "rootless".
std::string builtModule(const std::string& architecture);

/// The package for one of dpkg's architectures in `folder`, a build folder.
std::string packageIn(const std::string& folder, const std::string& architecture);

}  // namespace quillet::test
