// SPDX-License-Identifier: MIT
#pragma once

namespace quillet::test {

enum class Failing { once, forEver };

/// Has the request for memory number `request`, counted from 0, find none, or it and all that
/// follow. Of the program that is linked with --wrap=malloc.
void failMemory(int request, Failing failing);

/// Whether a request has found none.
bool hasMemoryFailed();

}  // namespace quillet::test
