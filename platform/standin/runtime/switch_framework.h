// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/flipswitch.h"
#include "platform/standin/notifications/observers.h"
#include "platform/standin/runtime/bundle_folder.h"
#include "platform/standin/runtime/data_source.h"
#include "platform/standin/runtime/module.h"
#include "platform/standin/runtime/module_class.h"

namespace quillet::standin {

/// Loads switch bundles into this process and sends them the framework's messages.
class SwitchFramework {
public:
    using Redraw = std::function<void(std::string_view identifier, FSSwitchState state)>;

    /// `observers`, to which a bundle may add its own, must outlive the framework.
    SwitchFramework(OpenModule openModule, Observers& observers);
    SwitchFramework(const SwitchFramework&) = delete;
    SwitchFramework& operator=(const SwitchFramework&) = delete;

    /// Loads the bundle in `folder`, which stays loaded, and registers its principal class as a
    /// switch. The answer is the switch's identifier. Throws BundleError; nothing of the bundle
    /// then stays, nor any observer that it has added.
    std::string load(const std::filesystem::path& folder);

    /// The data source of a switch; null when there is none by that identifier.
    FSSwitchDataSource* dataSource(std::string_view identifier) const;

    /// The bundle of a switch; null when there is none by that identifier.
    BundleFolder* bundle(std::string_view identifier) const;

    /// Has `redraw` called with every state that the panel asks a switch for on its own account.
    void setRedraw(Redraw redraw) { redraw_ = std::move(redraw); }

    /// What the panel does when a switch has changed: asks it for its state, which is the answer,
    /// and draws it. Nothing when there is no such switch.
    std::optional<FSSwitchState> refresh(std::string_view identifier) const;

    /// For the runtime: a class of the module that is being loaded, or of the host when none is.
    ModuleClass& add(const ClassDescription& description);

    /// The bundle of the module that defines `cls`; the host's own for any other class.
    BundleFolder& bundleOf(const Class& cls) const;

    /// The address of a symbol that a loaded bundle exports, or null.
    void* symbol(const char* name) const;

private:
    /// A bundle with all that came of loading it. The module goes before what it refers to.
    struct Loaded {
        std::unique_ptr<BundleFolder, Release> bundle;
        std::vector<std::unique_ptr<ModuleClass, Release>> classes;
        std::unique_ptr<Module> module;
        FSSwitchDataSource* dataSource = nullptr;
    };

    void open(Loaded& loading);
    static FSSwitchDataSource* principalDataSource(const Loaded& loaded);
    const Loaded* find(std::string_view identifier) const;

    OpenModule openModule_;
    Observers& observers_;
    Loaded host_;
    std::vector<std::unique_ptr<Loaded>> switches_;
    /// Whose module is being loaded: the host itself while none is.
    Loaded* loading_ = &host_;
    Redraw redraw_;
};

}  // namespace quillet::standin
