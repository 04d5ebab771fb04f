// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "tests/support/program.h"

namespace quillet::test {

/// Runs a line of the shell's in the project's folder.
Outcome run(const std::string& line);

/// The output of a line that must succeed; the test fails when it does not.
std::string textOf(const std::string& line);

/// The lines of `text` that hold `part`, without leading white space.
Words linesWith(const std::string& text, const std::string& part);

/// The words in column `column`, counted from 0, of all lines of `text` that have so many.
Words column(const std::string& text, size_t column);

/// The folder with the device build: the one that $QUILLET_IOS_BUILD names, or this build's.
std::string builtFolder();

/// The module of one architecture, the universal one for an empty `architecture`, or the one for
/// the packages: "device" or "rootless".
std::string builtModule(const std::string& architecture);

/// A folder with both packages, which script/package makes of the device build at the first call.
std::string packages();

/// The source for package managers, which script/repository makes of it at the first call.
std::string repository();

/// The package for one of dpkg's architectures in `folder`.
std::string packageIn(const std::string& folder, const std::string& architecture);

/// The line that makes the packages, and the one that makes the source, as these tests expect them:
/// in `folder`, of the bundles in `bundles`.
std::string makePackages(const std::string& folder, const std::string& bundles);
std::string makeRepository(const std::string& folder, const std::string& bundles);

}  // namespace quillet::test
