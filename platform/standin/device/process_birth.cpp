// SPDX-License-Identifier: MIT
#include "platform/standin/device/process_birth.h"

#include <fcntl.h>

#include <algorithm>
#include <array>
#include <sstream>

#include "platform/standin/files/descriptor.h"

namespace quillet::standin {

std::string birthOf(pid_t process) {
    const std::string path = "/proc/" + std::to_string(process) + "/stat";
    const Descriptor file{uninterrupted([&] { return open(path.c_str(), O_RDONLY | O_CLOEXEC); })};
    if (!file.isOpen()) return {};
    std::array<char, 1024> text;
    const auto size =
        uninterrupted([&] { return ::read(file.number(), text.data(), text.size()); });
    const std::string status(text.data(), size > 0 ? static_cast<std::size_t>(size) : 0);
    // The name, in parentheses, may hold anything. Of the fields behind it the twentieth is meant.
    constexpr int place = 20;
    std::istringstream fields{status.substr(std::min(status.rfind(')') + 1, status.size()))};
    std::string field;
    for (int i = 0; i < place; ++i) fields >> field;
    return fields ? field : std::string{};
}

}  // namespace quillet::standin
