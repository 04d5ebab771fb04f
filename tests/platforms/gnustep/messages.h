// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "tests/platforms/gnustep/values.h"

namespace quillet::gnustep {

/// A message that the bundle sends to Foundation, and the function that runs in place of the
/// method: it sends the message on and records it.
struct Observed {
    const char* selector;
    IMP function;
};

template <class Answer, class... Arguments>
IMP method(Answer (*function)(id, SEL, Arguments...)) {
    return reinterpret_cast<IMP>(reinterpret_cast<void (*)()>(function));
}

std::vector<Observed> objectMessages();
std::vector<Observed> propertyListMessages();
std::vector<Observed> runLoopMessages();

/// How many counts of objects the bundle holds: one for every alloc and retain that it sent, less
/// one for every release and for every object that its initialiser gave up.
int countsHeld();

/// For an initialiser that has answered nil, and so has released what alloc gave.
void initialiserGaveUp();

}  // namespace quillet::gnustep
