// SPDX-License-Identifier: MIT
#pragma once

#include "platform/standin/runtime/data_source.h"
#include "tests/platforms/macho/loader/runtime.h"

namespace quillet::macho {

/// A class of the module that asks for `load`, and an instance of it, as the stand-in's switch
/// framework knows them.
class SwitchClass final : public standin::FSSwitchDataSource {
public:
    /// Throws BundleError when the class has messages that are not forwarded to it, or has them in
    /// another form.
    explicit SwitchClass(ModuleClass cls);

    /// Makes the class known and sends it `load`.
    void registerWithPlatform();

    FSSwitchState stateForSwitchIdentifier(NSString identifier) override;
    void applyState(FSSwitchState state, NSString forSwitchIdentifier) override;

private:
    bool has(Selector selector) const;

    LoadedClass loaded_;
    Id instance_;
};

}  // namespace quillet::macho
