// SPDX-License-Identifier: MIT
#pragma once

#ifdef __cplusplus
extern "C" {
#endif

/// Runs `call` as a host's event loop does: with an autorelease pool of its own, and with the end
/// of the process for an exception that nobody catches.
void runAsHost(void (*call)(void* context), void* context);

#ifdef __cplusplus
}  // extern "C"

namespace quillet::gnustep {

template <class Body>
void asHost(Body body) {
    runAsHost([](void* context) { (*static_cast<Body*>(context))(); }, &body);
}

}  // namespace quillet::gnustep
#endif
