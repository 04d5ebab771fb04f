// SPDX-License-Identifier: MIT
#include "platform/system.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <string_view>
#include <system_error>

#include "platform/graphics_services.h"
#include "platform/standin/device/device.h"

namespace quillet {

using standin::Answer;
using standin::Device;
using standin::DeviceRoot;

namespace {

/// GraphicsServices is the one library that is ever opened: the file below the device root says
/// whether the device has it, and this stands for what it holds.
char library = 0;

template <std::size_t size>
void fill(char (&field)[size], std::string_view text) {
    field[text.copy(field, size - 1)] = '\0';
}

}  // namespace

// The bundle is linked so that its calls of the system library arrive here; see --wrap in ld(1).
extern "C" {

int __wrap_uname(utsname* name) {
    Device& device = Device::current();
    fill(name->sysname, "Darwin");
    fill(name->nodename, "Device");
    fill(name->release, "14.0.0");
    fill(name->version, "Darwin Kernel Version 14.0.0");
    fill(name->machine, device.machine);
    device.trace.function("uname", name->machine, Answer{0});
    return 0;
}

char* __wrap_strstr(const char* text, const char* part) {
    char* const place = std::strstr(const_cast<char*>(text), part);
    Device::current().trace.function("strstr", text, part, Answer{place != nullptr});
    return place;
}

void* __wrap_dlopen(const char* path, int mode) {
    Device& device = Device::current();
    std::error_code error;
    const bool opened = std::string_view{path} == DeviceRoot::graphicsServicesPath &&
                        std::filesystem::exists(device.below(path), error);
    device.trace.function("dlopen", path, mode, Answer{opened});
    if (!opened) return nullptr;
    ++device.openLibraries;
    return &library;
}

void* __wrap_dlsym(void* handle, const char* symbol) {
    const bool found =
        handle == &library && std::string_view{symbol} == "GSSendAppPreferencesChanged";
    Device::current().trace.function("dlsym", handle ? "<library>" : "", symbol, Answer{found});
    return found ? reinterpret_cast<void*>(&GSSendAppPreferencesChanged) : nullptr;
}

int __wrap_dlclose(void* handle) {
    Device& device = Device::current();
    const int status = handle == &library && device.openLibraries > 0 ? 0 : -1;
    if (status == 0) --device.openLibraries;
    device.trace.function("dlclose", "<library>", Answer{status});
    return status;
}

}  // extern "C"

}  // namespace quillet
