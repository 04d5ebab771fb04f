// SPDX-License-Identifier: MIT
#include "tests/platforms/macho/loader/switch_class.h"

#include <string>
#include <utility>

#include "platform/standin/flipswitch.h"
#include "platform/standin/runtime/module.h"

namespace quillet::macho {

namespace {

constexpr char stateSelector[] = "stateForSwitchIdentifier:";
constexpr char stateTypes[] = "i@:@";
constexpr char applySelector[] = "applyState:forSwitchIdentifier:";
constexpr char applyTypes[] = "v@:i@";
constexpr char loadSelector[] = "load";
constexpr char loadTypes[] = "v@:";

bool isForwarded(const Method& method) {
    return (method.selector == stateSelector && method.types == stateTypes) ||
           (method.selector == applySelector && method.types == applyTypes);
}

bool isLoad(const Method& method) {
    return method.selector == loadSelector && method.types == loadTypes;
}

void require(bool isSupported, const ModuleClass& cls, const Method& method) {
    if (isSupported) return;
    throw standin::BundleError("not supported: method " + method.selector + " of class " +
                               cls.name + ", of type " + method.types);
}

/// registerClass takes a plain function for `load`.
const ModuleClass* classBeingLoaded = nullptr;

void sendLoad() {
    const Pool pool;
    if (find(classBeingLoaded->classMethods, loadSelector) == nullptr) return;
    sendMessage<void>(const_cast<Id>(classBeingLoaded->address), loadSelector);
}

}  // namespace

SwitchClass::SwitchClass(ModuleClass cls) : loaded_{std::move(cls)}, instance_{loaded_.alloc()} {
    for (const Method& method : loaded_.cls.instanceMethods) {
        require(isForwarded(method), loaded_.cls, method);
    }
    for (const Method& method : loaded_.cls.classMethods) {
        require(isLoad(method), loaded_.cls, method);
    }
}

void SwitchClass::registerWithPlatform() {
    classBeingLoaded = &loaded_.cls;
    loaded_.registered = standin::registerClass({loaded_.cls.name.c_str(), sendLoad, this});
}

FSSwitchState SwitchClass::stateForSwitchIdentifier(NSString identifier) {
    if (!has(stateSelector)) return FSSwitchDataSource::stateForSwitchIdentifier(identifier);
    const Pool pool;
    return sendMessage<FSSwitchState>(instance_, stateSelector, identifier.instance());
}

void SwitchClass::applyState(FSSwitchState state, NSString forSwitchIdentifier) {
    if (!has(applySelector)) {
        return FSSwitchDataSource::applyState(state, forSwitchIdentifier);
    }
    const Pool pool;
    sendMessage<void>(instance_, applySelector, state, forSwitchIdentifier.instance());
}

bool SwitchClass::has(Selector selector) const {
    return find(loaded_.cls.instanceMethods, selector) != nullptr;
}

}  // namespace quillet::macho
