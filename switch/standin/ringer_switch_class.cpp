// SPDX-License-Identifier: MIT
#include "platform/standin/flipswitch.h"
#include "platform/standin/runtime/data_source.h"
#include "switch/ringer_switch.h"

// RingerSwitch as the stand-in's runtime and switch framework know it.

namespace quillet {

namespace {

class DataSource final : public standin::FSSwitchDataSource {
public:
    FSSwitchState stateForSwitchIdentifier(NSString /*identifier*/) override {
        return RingerSwitch::stateForSwitchIdentifier({});
    }
    void applyState(FSSwitchState state, NSString /*forSwitchIdentifier*/) override {
        RingerSwitch::applyState(state, {});
    }
};

constinit DataSource dataSource;

/// A plain pointer: class objects outlive the module's own clean-up.
void* classInstance = nullptr;

[[gnu::constructor]] void registerRingerSwitch() {
    classInstance = standin::registerClass({"RingerSwitch", RingerSwitch::load, &dataSource});
}

}  // namespace

Class RingerSwitch::classObject() { return Class{classInstance}; }

}  // namespace quillet
