// SPDX-License-Identifier: MIT
#pragma once

#include <stdint.h>

namespace quillet {

// The system's notification service, after notify(3). Names are shared by every process of the
// device; each has a count of posts and a state word that outlives its writer.

/// Status codes, as notify(3) numbers them.
inline constexpr uint32_t NOTIFY_STATUS_OK = 0;
inline constexpr uint32_t NOTIFY_STATUS_INVALID_NAME = 1;
inline constexpr uint32_t NOTIFY_STATUS_INVALID_TOKEN = 2;
inline constexpr uint32_t NOTIFY_STATUS_FAILED = 1000000;

/// A token that no registration ever gives.
inline constexpr int NOTIFY_TOKEN_INVALID = -1;

extern "C" {

// No function here calls back or waits for another process's answer to a post. Each may be called
// from any thread. None may be given a null pointer.

/// Takes a token of this process for `name`: NOTIFY_STATUS_OK, or NOTIFY_STATUS_INVALID_NAME for a
/// name that the service does not take, an empty one for example, or NOTIFY_STATUS_FAILED when the
/// service is out of reach or has no room. On any status but NOTIFY_STATUS_OK, `*outToken` is left
/// as it was. The token is the caller's until it gives it to notify_cancel.
uint32_t notify_register_check(const char* name, int* outToken);

/// Sets `*outCheck` to 1 if the token's name was posted since the token's last check, and at the
/// first check of every token; to 0 otherwise. A token that is not one yields
/// NOTIFY_STATUS_INVALID_TOKEN, a service out of reach NOTIFY_STATUS_FAILED, here and below. On any
/// status but NOTIFY_STATUS_OK, `*outCheck` is left as it was.
uint32_t notify_check(int token, int* outCheck);

/// Reads the state word of the token's name; 0 when nobody ever set it. On any status but
/// NOTIFY_STATUS_OK, `*outState` is left as it was.
uint32_t notify_get_state(int token, uint64_t* outState);

/// Sets the state word of the token's name, for every process at once. It does not post the name.
/// On any status but NOTIFY_STATUS_OK, the word is left as it was.
uint32_t notify_set_state(int token, uint64_t state);

/// Tells every observer of `name`, in every process, without waiting for any of them. A name that
/// nobody ever registered is posted to nobody, and that is NOTIFY_STATUS_OK too. Observers of this
/// process are called by its run loop, never during this call.
uint32_t notify_post(const char* name);

/// Gives the token back; it must not be used any more. A token that is not one yields
/// NOTIFY_STATUS_INVALID_TOKEN, and nothing else happens.
uint32_t notify_cancel(int token);

}  // extern "C"

}  // namespace quillet
