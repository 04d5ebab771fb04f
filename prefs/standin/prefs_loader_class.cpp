// SPDX-License-Identifier: MIT
#include "platform/standin/flipswitch.h"
#include "prefs/prefs_loader.h"

// PrefsLoader as the stand-in's runtime knows it.

namespace quillet {

namespace {

/// A plain pointer, so that the module has nothing to clean up.
void* classInstance = nullptr;

/// Before the classes without a number, of which one makes a PrefsLoader as soon as it is loaded.
[[gnu::constructor(1000)]] void registerPrefsLoader() {
    classInstance = standin::registerClass({"PrefsLoader", [] {}, nullptr});
}

}  // namespace

Class PrefsLoader::classObject() { return Class{classInstance}; }

}  // namespace quillet
