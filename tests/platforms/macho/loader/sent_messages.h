// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <map>
#include <string>

#include "tests/platforms/macho/loader/runtime.h"

namespace quillet::macho {

/// Counts the messages that the module sends while this lives, by their selectors, but for those
/// that its own methods take. The module has no other way to retain, release or make an object: it
/// imports no function that does. One at a time.
class SentMessages {
public:
    SentMessages();
    ~SentMessages();
    SentMessages(const SentMessages&) = delete;
    SentMessages& operator=(const SentMessages&) = delete;

    /// Those that reached an object or a class.
    std::map<std::string, int, std::less<>> counts;
    /// Those to nil, whatever they say.
    int toNil = 0;
};

/// For the runtime: that a message was sent.
void countMessage(const void* receiver, Selector selector);

}  // namespace quillet::macho
