// SPDX-License-Identifier: MIT
#include "tests/platforms/macho/loader/sent_messages.h"

namespace quillet::macho {

namespace {

SentMessages* counting = nullptr;

}  // namespace

SentMessages::SentMessages() { counting = this; }

SentMessages::~SentMessages() { counting = nullptr; }

void countMessage(const void* receiver, Selector selector) {
    if (counting == nullptr) return;
    if (receiver == nullptr) {
        ++counting->toNil;
    } else {
        ++counting->counts[selector];
    }
}

}  // namespace quillet::macho
