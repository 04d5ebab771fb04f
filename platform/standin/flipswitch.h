// SPDX-License-Identifier: MIT
#pragma once

#include "platform/standin/runtime/data_source.h"

namespace quillet::standin {

/// Makes a class of the module that is being loaded known and sends it `load`. For a module's own
/// constructors. The answer is the class object, which lives until the module is unloaded.
void* registerClass(const ClassDescription& description);

}  // namespace quillet::standin
