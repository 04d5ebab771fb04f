// SPDX-License-Identifier: MIT
#pragma once

namespace quillet {

/// Has HUP, INT, PIPE, TERM and XFSZ wait until obeyHeldSignal, so that what was begun ends before
/// the process does. A second INT or TERM ends it at once. What the process ignores it goes on
/// ignoring. See signal(7).
void holdSignals();

/// The first signal that was held; 0 when none was.
int heldSignal();

/// Ends the process by the first signal that was held, as if it came now. Returns when none was.
void obeyHeldSignal();

}  // namespace quillet
