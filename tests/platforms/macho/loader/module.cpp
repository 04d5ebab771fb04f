// SPDX-License-Identifier: MIT
#include "tests/platforms/macho/loader/module.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/standin/files/file.h"
#include "platform/standin/plist/property_list.h"
#include "platform/standin/runtime/module.h"
#include "tests/platforms/macho/loader/classes.h"
#include "tests/platforms/macho/loader/convention.h"
#include "tests/platforms/macho/loader/exports.h"
#include "tests/platforms/macho/loader/fixups.h"
#include "tests/platforms/macho/loader/image.h"
#include "tests/platforms/macho/loader/imports.h"
#include "tests/platforms/macho/loader/switch_class.h"

namespace quillet::macho {

namespace {

void requireLibraries(const Layout& layout) {
    for (const Library& library : layout.libraries) {
        if (library.isWeak || hasLibrary(library.path)) continue;
        throw standin::BundleError("no library " + library.path);
    }
}

class MachO final : public standin::Module {
public:
    explicit MachO(std::string file)
        : file_{std::move(file)},
          layout_{readLayout(std::as_bytes(std::span{file_}))},
          image_{layout_} {
        requireLibraries(layout_);
        setAddresses(image_, layout_, findImport);
        image_.protect();
        for (ModuleClass& cls : readClasses(image_)) {
            if (cls.hasLoad) {
                switches_.push_back(std::make_unique<SwitchClass>(std::move(cls)));
            } else {
                classes_.push_back(std::make_unique<LoadedClass>(std::move(cls)));
            }
        }
        for (const auto& cls : switches_) cls->registerWithPlatform();
    }

    void* symbol(const char* name) const override {
        const auto address = findExport(layout_.exports, std::string{"_"} + name);
        if (!address) return nullptr;
        std::byte* const place = image_.place(*address);
        if (!image_.isCode(*address)) return place;
        return reinterpret_cast<void*>(callable(reinterpret_cast<void (*)()>(place)));
    }

private:
    /// For calls that come neither from the framework nor from a framework's call.
    Pool pool_;
    std::string file_;
    Layout layout_;
    Image image_;
    /// Of the classes, those that ask for `load`, and the others.
    std::vector<std::unique_ptr<SwitchClass>> switches_;
    std::vector<std::unique_ptr<LoadedClass>> classes_;
};

}  // namespace

std::unique_ptr<standin::Module> openMachO(const std::filesystem::path& path) {
    auto file = standin::readFile(path);
    if (!file) throw standin::BundleError(path.string() + ": cannot be read");
    try {
        return std::make_unique<MachO>(std::move(*file));
    } catch (const standin::BundleError& error) {
        throw standin::BundleError(path.string() + ": " + error.what());
    }
}

}  // namespace quillet::macho
