// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <span>
#include <string>
#include <string_view>

#include "platform/springboard_classes.h"
#include "platform/standin/device/device.h"
#include "platform/standin/files/file.h"
#include "platform/standin/plist/property_list.h"
#include "tests/platforms/macho/device_bundle.h"
#include "tests/platforms/macho/loader/classes.h"
#include "tests/platforms/macho/loader/exports.h"
#include "tests/platforms/macho/loader/fixups.h"
#include "tests/platforms/macho/loader/image.h"
#include "tests/platforms/macho/loader/imports.h"
#include "tests/platforms/macho/loader/module.h"
#include "tests/platforms/macho/loader/runtime.h"
#include "tests/support/machine.h"
#include "tests/support/names.h"

namespace quillet::macho {
namespace {

using namespace std::string_view_literals;
using standin::BundleError;
using standin::Device;
using ::testing::ContainsRegex;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

std::string moduleFile() { return *standin::readFile(test::deviceBundle() / "Quillet"); }

/// The module with the first `from` in its file changed to `to`, which is as long.
std::string changed(std::string_view from, std::string_view to) {
    std::string file = moduleFile();
    const std::size_t place = file.find(from);
    EXPECT_NE(place, std::string::npos) << from;
    return file.replace(place, to.size(), to);
}

/// A bundle like the built one, with a module of its own, on an iPod.
class Altered {
public:
    explicit Altered(const std::string& module) {
        std::filesystem::copy(test::deviceBundle(), bundle(),
                              std::filesystem::copy_options::recursive);
        standin::writeFileAtomically(bundle() / "Quillet", module);
    }

    void load() { device().framework.load(bundle()); }
    /// Why the bundle cannot be loaded; empty when it can.
    std::string refusal() {
        try {
            load();
        } catch (const BundleError& error) {
            return error.what();
        }
        return {};
    }
    void turnOff() {
        auto* const dataSource = device().framework.dataSource(test::switchIdentifier);
        dataSource->applyState(FSSwitchStateOff, test::switchIdentifier);
    }
    Device& device() { return machine_.device(); }

private:
    std::filesystem::path bundle() const { return machine_.folder() / "Quillet.bundle"; }

    test::Machine machine_{{.machine = "iPod5,1", .openModule = openMachO}};
};

std::string refusalOf(std::string_view from, std::string_view to) {
    return Altered{changed(from, to)}.refusal();
}

/// Everything that is done with a file but for running it.
void read(std::string_view file) {
    const Layout layout = readLayout(std::as_bytes(std::span{file}));
    Image image{layout};
    setAddresses(image, layout, findImport);
    image.protect();
    readClasses(image);
    for (const char* const symbol : {"_isiPod", "__prefsLoader", "_none"}) {
        findExport(layout.exports, symbol);
    }
}

bool isRefused(std::string_view file) {
    try {
        read(file);
    } catch (const BundleError&) {
        return true;
    }
    return false;
}

TEST(Loader, LoadsTheModuleAsItWasBuilt) {
    EXPECT_THAT(Altered{moduleFile()}.refusal(), IsEmpty());
}

TEST(Loader, RefusesAFileThatEndsTooEarlyAnywhere) {
    const std::string file = moduleFile();
    for (std::size_t size = 0; size < file.size(); size += size < 4096 ? 1 : 61) {
        ASSERT_TRUE(isRefused(std::string_view{file}.substr(0, size))) << size;
    }
    EXPECT_FALSE(isRefused(file));
}

TEST(Loader, StaysInTheModuleWhateverTheFileSays) {
    std::string file = moduleFile();
    // At some places only, to save time.
    constexpr std::size_t step = 37;
    int refused = 0;
    for (std::size_t place = 0; place < file.size(); place += step) {
        for (const char bits : {'\x01', '\x80', '\xFF'}) {
            file[place] = static_cast<char>(file[place] ^ bits);
            refused += isRefused(file) ? 1 : 0;
            file[place] = static_cast<char>(file[place] ^ bits);
        }
    }
    EXPECT_GT(refused, 100);
}

TEST(Loader, RefusesAModuleForAnotherProcessor) {
    std::string file = moduleFile();
    file[4] = '\x12';
    EXPECT_THAT(Altered{file}.refusal(), ContainsRegex("not supported: processor 0x(10000)?12$"));
}

TEST(Loader, RefusesATableOfAddressesInAnotherFormat) {
    EXPECT_THAT(refusalOf("\x22\0\0\x80\x30\0\0\0"sv, "\x34\0\0\x80\x30\0\0\0"sv),
                HasSubstr("not supported: load command 0x80000034"));
}

TEST(Loader, PassesOverALoadCommandThatItNeedNotKnow) {
    const std::string_view uuid = "\x1B\0\0\0\x18\0\0\0"sv;
    EXPECT_THAT(refusalOf(uuid, "\x7B\0\0\0\x18\0\0\0"sv), IsEmpty());
}

TEST(Loader, TakesAnImportFromTheLibraryThatItNamesAndFromNoOther) {
    const std::string path = "/System/Library/Frameworks/Foundation.framework/Foundation";
    std::string other = "/usr/lib/libobjc.A.dylib";
    other.resize(path.size());
    EXPECT_THAT(refusalOf(path, other),
                ContainsRegex("unknown import: _.* from /usr/lib/libobjc.A.dylib$"));
}

TEST(Loader, RefusesALibraryThatTheDeviceLacks) {
    EXPECT_THAT(refusalOf("/usr/lib/libflipswitch", "/usr/lib/libflapswitch"),
                HasSubstr("no library /usr/lib/libflapswitch.dylib"));
}

TEST(Loader, LoadsAModuleWithoutALibraryThatItCanDoWithout) {
    EXPECT_THAT(refusalOf("Celestial.framework/Celestial", "Celestial.framework/Celestiel"),
                IsEmpty());
}

TEST(Loader, RefusesAClassWhoseMetaclassIsMarkedAsAClass) {
    const bool is64Bit = sizeof(void*) == 8;
    // The metaclass's flags and the sizes of a class object.
    const auto metaclass = [&](char flags) {
        const char size = is64Bit ? '\x28' : '\x14';
        return std::string{flags, 0, 0, 0, size, 0, 0, 0, size, 0, 0, 0};
    };
    EXPECT_THAT(refusalOf(metaclass(1), metaclass(0)),
                HasSubstr("malformed: a class that is marked as one of another kind"));
}

TEST(Loader, ReadsWhichProtocolsAClassKeeps) {
    const std::string file = moduleFile();
    const Layout layout = readLayout(std::as_bytes(std::span{file}));
    const Image image{layout};
    setAddresses(image, layout, findImport);
    const auto classes = readClasses(image);
    const auto found = std::ranges::find(classes, "RingerSwitch", &ModuleClass::name);
    ASSERT_NE(found, classes.end());
    EXPECT_THAT(found->protocols, ElementsAre("FSSwitchDataSource"));
}

TEST(Loader, RefusesAnUnknownImportByItsName) {
    EXPECT_THAT(refusalOf("_notify_cancel", "_notify_canvas"),
                HasSubstr("unknown import: _notify_canvas"));
    EXPECT_THAT(refusalOf("$_NSRunLoop", "$_NSRunLoup"),
                HasSubstr("unknown import: _OBJC_CLASS_$_NSRunLoup"));
}

TEST(Loader, LeavesAnUnknownImportThatTheModuleCanDoWithoutAtNull) {
    Altered altered{changed("$_AVSystemController", "$_AVSystemConductor")};
    altered.load();
    altered.device().hardware.setVolume("Ringtone", 0.5F);
    altered.turnOff();
    EXPECT_EQ(altered.device().hardware.volume("Ringtone"), 0.5F);
}

TEST(Loader, RefusesAMethodOfAnotherType) {
    const bool is64Bit = sizeof(void*) == 8;
    EXPECT_THAT(
        is64Bit ? refusalOf("i24@0:8@16", "q24@0:8@16") : refusalOf("i12@0:4@8", "q12@0:4@8"),
        HasSubstr("not supported: method stateForSwitchIdentifier: of class RingerSwitch, "
                  "of type q@:@"));
}

TEST(Loader, DoesNotSendLoadToAClassThatDoesNotAskForIt) {
    EXPECT_THAT(refusalOf("__objc_nlclslist", "__objc_nlclsnone"),
                HasSubstr("no principal class \"RingerSwitch\""));
}

TEST(Loader, EndsTheProcessAtAnUnknownMessage) {
    Altered altered{changed("defaultManager", "defaultManagor")};
    altered.load();
    EXPECT_DEATH(altered.turnOff(), "unknown message: \\+\\[NSFileManager defaultManagor\\]");
}

TEST(Loader, EndsTheProcessWhenAnInstanceIsSentWhatItsVariantLacks) {
    Altered altered{moduleFile()};
    altered.load();
    altered.device().host.indicator = standin::HostVariant::Indicator::deaf;
    const Id instance =
        sendMessage<Id>(SBRingerHUDController::classInHost().instance(), "sharedInstance");
    EXPECT_DEATH(sendMessage<void>(instance, "activate:", 1),
                 "<SBRingerHUDController>: unrecognized selector \"activate:\"");
}

TEST(Loader, FindsWhatTheModuleExportsByItsFullNameOnly) {
    Altered altered{moduleFile()};
    altered.load();
    EXPECT_NE(altered.device().framework.symbol("isiPod"), nullptr);
    for (const char* const name : {"", "isiPo", "isiPods", "_isiPod", "ringerStateChanged"}) {
        EXPECT_EQ(altered.device().framework.symbol(name), nullptr) << name;
    }
}

TEST(Loader, LetsNobodyWriteToCode) {
    Altered altered{moduleFile()};
    altered.load();
    auto* const code = static_cast<volatile char*>(altered.device().framework.symbol("isiPod"));
    EXPECT_EXIT(*code = 0, ::testing::KilledBySignal(SIGSEGV), "");
}

}  // namespace
}  // namespace quillet::macho
