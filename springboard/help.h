// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace CLI {
class App;
}  // namespace CLI

namespace quillet {

/// What `app`, the program or one of its commands, says of itself: how it is used, what it does,
/// its commands and options by their groups, its footer. No line of it but those of the footer,
/// which stand as they are, is longer than 80 columns.
std::string helpOf(const CLI::App& app);

}  // namespace quillet
