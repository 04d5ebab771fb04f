// SPDX-License-Identifier: MIT
#pragma once

#include <ostream>
#include <string>

namespace quillet::test {

/// One of the two packages for devices, and what it must be.
struct DevicePackage {
    std::string name;          // of the kind of system it is for
    std::string architecture;  // as dpkg names it
    std::string prefix;        // of all its paths
    std::string firmware;      // the oldest
    std::string module;        // which one it holds; see builtModule
};

inline const DevicePackage devicePackages[] = {
    {"Rootful", "iphoneos-arm", "", "7.0", "device"},
    {"Rootless", "iphoneos-arm64", "/var/jb", "15.0", "rootless"},
};

inline std::ostream& operator<<(std::ostream& out, const DevicePackage& package) {
    return out << package.name;
}

}  // namespace quillet::test
