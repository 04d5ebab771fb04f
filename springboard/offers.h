// SPDX-License-Identifier: MIT
#pragma once

#include "program/completion.h"

namespace CLI {
class App;
}  // namespace CLI

namespace quillet {

/// What completion offers of `app`, the program or one of its commands: its description without the
/// library that holds it.
OfferedCommand offersOf(const CLI::App& app);

}  // namespace quillet
