// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "platform/standin/runtime/bundle_folder.h"
#include "platform/standin/runtime/data_source.h"
#include "platform/standin/runtime/instance.h"

namespace quillet::standin {

/// A class that a module has made known.
class ModuleClass final : public Instance {
public:
    /// `bundle`, to which the module belongs, must outlive the class.
    ModuleClass(const ClassDescription& description, BundleFolder& bundle)
        : dataSource{description.dataSource}, bundle{bundle}, name_{description.name} {}

    std::string className() const override { return name_; }
    bool isClass() const override { return true; }

    FSSwitchDataSource* const dataSource;
    BundleFolder& bundle;

private:
    std::string name_;
};

}  // namespace quillet::standin
