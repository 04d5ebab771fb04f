// SPDX-License-Identifier: MIT
#include "tests/support/phone.h"

#include <stdexcept>
#include <utility>

#include "platform/standin/files/file.h"
#include "platform/standin/plist/property_list.h"
#include "platform/standin/runtime/dictionary_file.h"
#include "platform/standin/runtime/instances.h"
#include "tests/support/under_test.h"

namespace quillet::test {

using standin::Dictionary;
using standin::Value;

namespace {

MachineOptions withModuleUnderTest(MachineOptions options) {
    options.openModule = moduleOpener();
    return options;
}

}  // namespace

Phone::Phone(MachineOptions options) : Machine{withModuleUnderTest(std::move(options))} {
    device().trace.setSink([this](const standin::TraceRecord& record) {
        log().add(record);
        if (!tokenWork_ || record.operation != "notify_register_check") return;
        tokenWork_(static_cast<int>(std::get<std::int64_t>(record.arguments[1])));
    });
    device().framework.load(bundleUnderTest());
}

FSSwitchState Phone::state(const char* identifier) {
    return dataSource().stateForSwitchIdentifier(identifier);
}

void Phone::apply(std::int32_t state, const char* identifier) {
    dataSource().applyState(static_cast<FSSwitchState>(state), identifier);
}

void Phone::whenTokenIsTaken(std::function<void(int token)> work) { tokenWork_ = std::move(work); }

standin::FSSwitchDataSource& Phone::dataSource() {
    return *device().framework.dataSource(switchIdentifier);
}

void Phone::write(std::string_view path, const Value& value) {
    writeBytes(path, standin::writePropertyList(value));
}

void Phone::writeBytes(std::string_view path, std::string_view bytes) {
    if (!standin::writeFileAtomically(device().below(path), bytes)) {
        throw std::runtime_error("cannot write " + std::string{path});
    }
}

void Phone::remove(std::string_view path) { std::filesystem::remove_all(device().below(path)); }

std::optional<std::string> Phone::bytes(std::string_view path) {
    return standin::readFile(device().below(path));
}

std::optional<Dictionary> Phone::dictionary(std::string_view path) {
    return standin::readDictionary(device().below(path));
}

std::uint64_t Phone::stateWord() {
    return device().notifications.findOrAdd(ringerStateName)->state.load();
}

void Phone::setStateWord(std::uint64_t word) {
    device().notifications.findOrAdd(ringerStateName)->state = word;
}

std::uint32_t Phone::posts(std::string_view name) {
    return device().notifications.findOrAdd(name)->posts.load();
}

void Phone::post(std::string_view name) {
    device().notifications.post(*device().notifications.findOrAdd(name));
}

}  // namespace quillet::test
