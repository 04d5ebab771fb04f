// SPDX-License-Identifier: MIT
#include "tests/support/machine.h"

namespace quillet::test {

Machine::Machine(const MachineOptions& options)
    : device_{{.root = folder_.path() / "root",
               .machine = options.machine,
               .host = options.host,
               .clock = options.clock,
               .openModule = options.openModule}} {
    device_.trace.setSink([this](const standin::TraceRecord& record) { log_.add(record); });
}

}  // namespace quillet::test
