// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace quillet::bench {

using Words = std::vector<std::string>;

/// The word at `index`, or `otherwise`. Throws std::runtime_error when both are missing.
std::string wordAt(const Words& words, std::size_t index, const char* otherwise = nullptr);

/// Nanoseconds, in the order in which they were measured.
using Durations = std::vector<double>;

/// How long a call of `work` takes, `times` times, each the mean of `batch` calls in a row.
Durations measure(int times, int batch, const std::function<void()>& work);

/// Prints the median, the least and the first.
void print(const Durations& durations);

/// Prints the median and the 99th percentile.
void printWithTail(const Durations& durations);

/// Runs a program's `work` on its arguments. What it throws goes to standard error after the
/// program's name. The answer is the program's own.
int run(int count, char** arguments, void (*work)(const Words&));

}  // namespace quillet::bench
