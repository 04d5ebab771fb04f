// SPDX-License-Identifier: MIT
#pragma once

namespace quillet {

/// Puts something unwritable in place of the standard streams that are closed. A file of the device
/// would otherwise take their place when it is opened, and what is printed end up in it. To be
/// called before any file is opened.
void holdStandardStreams();

}  // namespace quillet
