// SPDX-License-Identifier: MIT
#pragma once

#include "platform/bundle.h"
#include "platform/flipswitch.h"
#include "platform/object.h"
#include "platform/string.h"

namespace quillet::standin {

class BundleFolder;
class SwitchFramework;

/// What the switch framework asks of a switch. Every message is optional: the bodies here are the
/// framework's defaults. The identifier is that of the switch. A message may come while another is
/// under way, from inside the run loop.
class FSSwitchDataSource {
public:
    virtual FSSwitchState stateForSwitchIdentifier(NSString identifier);
    virtual void applyState(FSSwitchState state, NSString forSwitchIdentifier);

    /// The tap: asks for the state and applies the opposite one. An indeterminate state has none.
    virtual void applyActionForSwitchIdentifier(NSString identifier);
    /// The bundle's display name in its development language; its identifier if it has no name.
    virtual NSString titleForSwitchIdentifier(NSString identifier);
    /// The path of the bundle's glyph for `state`, a vector drawing that serves every `size` (in
    /// points) and `scale`; nil when it has none.
    virtual NSString glyphImageDescriptorOfState(FSSwitchState state, double size, double scale,
                                                 NSString forSwitchIdentifier);
    virtual NSBundle bundleForSwitchIdentifier(NSString identifier);
    virtual void switchWasRegisteredForIdentifier(NSString identifier);
    virtual void switchWasUnregisteredForIdentifier(NSString identifier);
    virtual BOOL hasAlternateActionForSwitchIdentifier(NSString identifier);
    virtual void applyAlternateActionForSwitchIdentifier(NSString identifier);
    virtual BOOL switchWithIdentifierIsEnabled(NSString identifier);

    /// The framework that has the switch, which the defaults ask; none at first. It must outlive
    /// the messages to the switch.
    void setFramework(const SwitchFramework& framework) { framework_ = &framework; }

protected:
    constexpr FSSwitchDataSource() = default;
    ~FSSwitchDataSource() = default;

private:
    /// Null when no switch of the framework goes by `identifier`.
    BundleFolder* bundle(const NSString& identifier) const;

    const SwitchFramework* framework_ = nullptr;
};

/// What a module tells of a class that it defines.
struct ClassDescription {
    /// Under which a bundle's property list names it.
    const char* name;
    /// Sent once, as soon as the module is loaded.
    void (*load)();
    /// The class's one object for the switch framework, which lives as long as the module; null for
    /// a class that is no switch.
    FSSwitchDataSource* dataSource;
};

}  // namespace quillet::standin
