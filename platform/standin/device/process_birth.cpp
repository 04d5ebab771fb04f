// SPDX-License-Identifier: MIT
#include "platform/standin/device/process_birth.h"

#include <sstream>

#include "platform/standin/files/file.h"

namespace quillet::standin {

std::string birthOf(pid_t process) {
    const auto status = readFile("/proc/" + std::to_string(process) + "/stat");
    if (!status) return {};
    // The name, in parentheses, may hold anything. Of the fields behind it the twentieth is meant.
    constexpr int place = 20;
    std::istringstream fields{status->substr(status->rfind(')') + 1)};
    std::string field;
    for (int i = 0; i < place; ++i) fields >> field;
    return fields ? field : std::string{};
}

}  // namespace quillet::standin
