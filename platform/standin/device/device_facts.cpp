// SPDX-License-Identifier: MIT
#include "platform/standin/device/device_facts.h"

#include <algorithm>
#include <optional>
#include <stdexcept>
#include <string_view>
#include <variant>

#include "platform/standin/files/file.h"
#include "platform/standin/runtime/dictionary_file.h"

namespace quillet::standin {

namespace {

constexpr char machineKey[] = "machine";
constexpr char hostKey[] = "host";

/// uname's field holds 255 bytes and a NUL.
constexpr std::size_t maxMachineLength = 255;

/// A model is bytes; those that are no characters of a property list are kept as data.
Value valueOf(const std::string& machine) {
    const bool isText = std::ranges::all_of(machine, [](char c) { return c >= ' ' && c <= '~'; });
    return isText ? Value{machine} : Value{Data{machine}};
}

/// Empty for what is no model.
std::string machineIn(const Value& value) {
    const auto* const text = std::get_if<std::string>(&value);
    const auto* const data = std::get_if<Data>(&value);
    std::string machine = text != nullptr ? *text : data != nullptr ? data->bytes : "";
    return machine.size() <= maxMachineLength ? machine : "";
}

std::optional<HostVariant> hostIn(const Value& value) {
    const auto* const text = std::get_if<std::string>(&value);
    return text != nullptr ? parseHostVariant(*text) : std::nullopt;
}

/// Nothing when the file tells something that no device is.
std::optional<DeviceFacts> factsIn(const Dictionary& file) {
    DeviceFacts facts;
    if (const auto value = file.find(machineKey)) facts.machine = machineIn(*value);
    const auto value = file.find(hostKey);
    const auto host = value ? hostIn(*value) : facts.host;
    if (facts.machine.empty() || !host) return std::nullopt;
    facts.host = *host;
    return facts;
}

}  // namespace

Dictionary toDictionary(const DeviceFacts& facts) {
    return {{machineKey, valueOf(facts.machine)}, {hostKey, textOf(facts.host)}};
}

DeviceFacts readFacts(const std::filesystem::path& path) {
    if (!mayExist(path)) return {};
    const auto file = readDictionary(path);
    const auto facts = file ? factsIn(*file) : std::nullopt;
    if (facts) return *facts;
    const std::string reason = file ? "" : ": " + whyNoDictionary(path);
    throw std::runtime_error(path.string() + ": does not tell what the device is" + reason);
}

void writeFacts(const std::filesystem::path& path, const DeviceFacts& facts) {
    if (writeDictionary(path, toDictionary(facts))) return;
    throw std::runtime_error(path.string() + ": cannot be written");
}

}  // namespace quillet::standin
