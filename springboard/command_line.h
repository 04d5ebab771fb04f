// SPDX-License-Identifier: MIT
#pragma once

#include "springboard/options.h"

namespace CLI {
class App;
}  // namespace CLI

namespace quillet {

/// Tells `app` the program's commands and options, which set `options`, with all that the help
/// says of them. Both must outlive the parsing.
void describe(CLI::App& app, Options& options);

}  // namespace quillet
