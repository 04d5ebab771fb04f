// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "platform/standin/plist/value.h"
#include "platform/standin/runtime/data_source.h"
#include "prefs/prefs_loader.h"
#include "tests/support/machine.h"
#include "tests/support/names.h"

namespace quillet::test {

/// A machine with the bundle under test loaded into its SpringBoard, and nothing in the bundle's
/// preferences file, which is absent. Its log begins with what the bundle called as it was loaded.
class Phone : public Machine {
public:
    /// Whatever they say of opening modules, the bundle under test opens as it must.
    explicit Phone(MachineOptions options = {});

    /// The switch as the framework sees it.
    FSSwitchState state(const char* identifier = switchIdentifier);
    void apply(std::int32_t state, const char* identifier = switchIdentifier);
    standin::FSSwitchDataSource& dataSource();

    /// Has `work` done with every token of the bundle as soon as it is taken.
    void whenTokenIsTaken(std::function<void(int token)> work);

    /// The address of a function or a variable that the bundle exports.
    template <class Type>
    Type* exported(const char* name) {
        return reinterpret_cast<Type*>(device().framework.symbol(name));
    }
    PrefsLoader& preferences() { return **exported<PrefsLoader*>("_prefsLoader"); }

    /// Files, by their paths on the device.
    void write(std::string_view path, const standin::Value& value);
    void writeBytes(std::string_view path, std::string_view bytes);
    void remove(std::string_view path);
    /// Nothing when there is no file.
    std::optional<std::string> bytes(std::string_view path);
    /// The dictionary in the file; nothing when there is none.
    std::optional<standin::Dictionary> dictionary(std::string_view path);

    /// The ringer-state word.
    std::uint64_t stateWord();
    void setStateWord(std::uint64_t word);
    std::uint32_t posts(std::string_view name);
    void post(std::string_view name);

    /// The volume of the category "Ringtone".
    float volume() { return device().hardware.volume("Ringtone").value_or(-1.0F); }

private:
    std::function<void(int)> tokenWork_;
};

}  // namespace quillet::test
