// SPDX-License-Identifier: MIT
#include "platform/standin/runtime/module.h"

#include <dlfcn.h>

namespace quillet::standin {

namespace {

class SharedObject final : public Module {
public:
    explicit SharedObject(void* handle) : handle_{handle} {}
    SharedObject(const SharedObject&) = delete;
    SharedObject& operator=(const SharedObject&) = delete;
    ~SharedObject() override { dlclose(handle_); }

    void* symbol(const char* name) const override { return dlsym(handle_, name); }

private:
    void* handle_;
};

}  // namespace

std::unique_ptr<Module> openSharedObject(const std::filesystem::path& path) {
    void* const handle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (handle == nullptr) throw BundleError(dlerror());
    return std::make_unique<SharedObject>(handle);
}

}  // namespace quillet::standin
