// SPDX-License-Identifier: MIT
#pragma once

namespace quillet {

// Functions of the system library. Linux has functions of the same names that answer for the
// machine it runs on; the bundle's are the device's.

/// What the device says of itself, in NUL-terminated strings.
struct utsname {
    char sysname[256];
    char nodename[256];
    char release[256];
    char version[256];
    /// The model, for example "iPhone6,1".
    char machine[256];
};

inline constexpr int RTLD_LAZY = 1;

extern "C" {

/// Fills `*name`. 0, or -1 when it cannot; see uname(3).
int uname(utsname* name);

/// The first place in `text` where `part` stands, or null; see strstr(3).
char* strstr(const char* text, const char* part);

/// A handle for the library at `path`, a path of the device, to be given back with dlclose; null
/// when it cannot be opened. See dlopen(3).
void* dlopen(const char* path, int mode);

/// The address of `symbol` in an open library, or null; see dlsym(3).
void* dlsym(void* handle, const char* symbol);

/// Gives a handle back. 0, or -1 for a handle that is not open; see dlclose(3).
int dlclose(void* handle);

}  // extern "C"

}  // namespace quillet
