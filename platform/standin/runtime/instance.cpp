// SPDX-License-Identifier: MIT
#include "platform/standin/runtime/instance.h"

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

}  // namespace quillet::standin
