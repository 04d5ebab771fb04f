// SPDX-License-Identifier: MIT
#include "platform/standin/runtime/instance.h"

#include <errno.h>

#include <cstdio>
#include <cstdlib>

namespace quillet::standin {

namespace {

int liveInstances = 0;

}  // namespace

Instance::Instance() { ++liveInstances; }

Instance::~Instance() { --liveInstances; }

int Instance::live() { return liveInstances; }

std::string Instance::description() const {
    return isClass() ? className() : "<" + className() + ">";
}

void Instance::release() {
    if (--count_ == 0) delete this;
}

void unrecognizedSelector(const Instance& receiver, const char* selector) {
    const std::string origin = receiver.origin();
    std::fflush(stdout);
    std::fprintf(stderr, "%s: %s%s%s: unrecognized selector \"%s\"\n",
                 program_invocation_short_name, origin.c_str(), origin.empty() ? "" : ": ",
                 receiver.description().c_str(), selector);
    std::_Exit(EXIT_FAILURE);
}

}  // namespace quillet::standin
