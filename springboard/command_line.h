// SPDX-License-Identifier: MIT
#pragma once

#include <CLI/App.hpp>

#include "springboard/options.h"

namespace quillet {

/// Tells `app` the program's commands and options, which set `options`, with all that the help
/// says of them. Both must outlive the parsing.
void describe(CLI::App& app, Options& options);

}  // namespace quillet
