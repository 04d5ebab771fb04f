// SPDX-License-Identifier: MIT
#include "platform/standin/plist/fault.h"

#include <algorithm>

#include "platform/standin/plist/property_list.h"
#include "platform/standin/plist/text_encoding.h"

namespace quillet::standin {
namespace {

/// Line and column of the end of `text`, in UTF-8.
std::string placeAfter(std::string_view text) {
    const auto lines = std::count(text.begin(), text.end(), '\n');
    const std::string_view line = text.substr(text.rfind('\n') + 1);
    const auto isFirstByte = [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80; };
    const auto characters = std::count_if(line.begin(), line.end(), isFirstByte);
    return "line " + std::to_string(lines + 1) + ", column " + std::to_string(characters + 1);
}

}  // namespace

std::string describe(const Fault& fault, std::string_view file) {
    if (formOf(file) == Form::binary) {
        return "offset " + std::to_string(fault.offset) + ": " + fault.reason;
    }
    const auto document = documentInUTF8(std::string{file});
    const std::string_view text = document ? std::string_view{*document} : std::string_view{};
    return placeAfter(text.substr(0, fault.offset)) + ": " + fault.reason;
}

}  // namespace quillet::standin
