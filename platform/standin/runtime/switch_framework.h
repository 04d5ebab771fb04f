// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/flipswitch.h"
#include "platform/standin/runtime/bundle_folder.h"
#include "platform/standin/runtime/data_source.h"
#include "platform/standin/runtime/instance.h"
#include "platform/standin/runtime/module.h"

namespace quillet::standin {

/// A class that a module has made known, and the bundle that the module belongs to.
class ClassInstance final : public Instance {
public:
    ClassInstance(const ClassDescription& description, Bundle* bundle)
        : name{description.name}, dataSource{description.dataSource}, bundle{bundle} {}

    std::string description() const override { return name; }

    const std::string name;
    FSSwitchDataSource* const dataSource;
    Bundle* const bundle;
};

/// Loads switch bundles into this process and sends them the framework's messages.
class SwitchFramework {
public:
    using Redraw = std::function<void(std::string_view identifier, FSSwitchState state)>;

    explicit SwitchFramework(OpenModule openModule);
    SwitchFramework(const SwitchFramework&) = delete;
    SwitchFramework& operator=(const SwitchFramework&) = delete;

    /// Loads the bundle in `folder`, which stays loaded, and registers its principal class as a
    /// switch. The answer is the switch's identifier. Throws BundleError.
    std::string load(const std::filesystem::path& folder);

    /// The data source of a switch; null when there is none by that identifier.
    FSSwitchDataSource* dataSource(std::string_view identifier) const;

    /// The bundle of a switch; null when there is none by that identifier.
    Bundle* bundle(std::string_view identifier) const;

    /// Has `redraw` called with every state that the panel asks a switch for on its own account.
    void setRedraw(Redraw redraw) { redraw_ = std::move(redraw); }

    /// What the panel does when a switch has changed: asks it for its state and draws it.
    void refresh(std::string_view identifier) const;

    /// For the runtime: a class of the module that is being loaded.
    ClassInstance& add(const ClassDescription& description);

    /// The bundle of the module that defines `cls`; the host's own for any other class.
    Bundle& bundleOf(const Class& cls) const;

    /// The address of a symbol that a loaded bundle exports, or null.
    void* symbol(const char* name) const;

private:
    struct Counted {
        void operator()(Instance* instance) const { instance->release(); }
    };
    struct Switch {
        std::string identifier;
        FSSwitchDataSource* dataSource;
        Bundle* bundle;
    };

    void open(const Bundle& bundle);
    const ClassInstance* principalClass(const Bundle& bundle) const;
    const Switch* find(std::string_view identifier) const;

    OpenModule openModule_;
    std::unique_ptr<Bundle, Counted> hostBundle_;
    std::vector<std::unique_ptr<Bundle, Counted>> bundles_;
    std::vector<std::unique_ptr<ClassInstance, Counted>> classes_;
    std::vector<std::unique_ptr<Module>> modules_;
    std::vector<Switch> switches_;
    Redraw redraw_;
};

}  // namespace quillet::standin
