// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>

#include <filesystem>
#include <iterator>
#include <string>
#include <vector>

#include "platform/audio_toolbox.h"
#include "tests/standin/on_a_device.h"
#include "tests/support/phone.h"

// What the bundle's calls arrive at.
extern "C" {
void* __wrap_dlopen(const char* path, int mode);
void* __wrap_dlsym(void* handle, const char* symbol);
int __wrap_dlclose(void* handle);
int __wrap_uname(void* fields);
}

namespace quillet::test {
namespace {

using ::testing::ElementsAre;

constexpr char library[] =
    "/System/Library/PrivateFrameworks/GraphicsServices.framework/GraphicsServices";
constexpr char opened[] =
    R"(dlopen("/System/Library/PrivateFrameworks/GraphicsServices.framework/GraphicsServices", 1))"
    " = true";
constexpr char notOpened[] =
    R"(dlopen("/System/Library/PrivateFrameworks/GraphicsServices.framework/GraphicsServices", 1))"
    " = false";

/// Functions of the system library as the loaded bundle reaches them.
class System : public testing::Test {
protected:
    Phone& phone() { return phone_; }

    BOOL isiPod(const std::string& machine) {
        phone_.device().machine = machine;
        phone_.log().clear();
        return phone_.exported<BOOL()>("isiPod")();
    }

    void updatePref(const char* key) {
        phone_.log().clear();
        const NSString string = key;
        phone_.exported<void(CFStringRef)>("updatePref")(string);
    }

private:
    Phone phone_;
};

TEST_F(System, UnameTellsTheDevicesModelAndNotThisMachines) {
    EXPECT_EQ(isiPod("iPod5,1"), YES);
    EXPECT_THAT(phone().calls(),
                ElementsAre(R"(uname("iPod5,1") = 0)", R"(strstr("iPod5,1", "iPod") = true)"));
    EXPECT_EQ(isiPod("iPhone6,1"), NO);
    EXPECT_THAT(phone().calls(),
                ElementsAre(R"(uname("iPhone6,1") = 0)", R"(strstr("iPhone6,1", "iPod") = false)"));
}

TEST_F(System, UnameFillsEveryField) {
    // The device's are larger than Linux's.
    char fields[5][256];
    EXPECT_EQ(__wrap_uname(fields), 0);
    const std::vector<std::string> texts(std::begin(fields), std::end(fields));
    EXPECT_THAT(texts, ElementsAre("Darwin", "Device", "14.0.0", "Darwin Kernel Version 14.0.0",
                                   "iPhone6,1"));
}

TEST_F(System, ModelsAreSearchedForThePartExactly) {
    for (const char* const model : {"iPod", "iPod7,1", "my iPod", "iiPod", "iPoiPod"}) {
        EXPECT_EQ(isiPod(model), YES) << model;
    }
    for (const char* const model : {"", "ipod5,1", "IPOD", "iPo", "iPad4,1", "i Pod", "podi"}) {
        EXPECT_EQ(isiPod(model), NO) << model;
    }
}

TEST_F(System, AModelMayFillTheWholeField) {
    EXPECT_EQ(isiPod(std::string(251, 'x') + "iPod"), YES);
    EXPECT_EQ(isiPod(std::string(252, 'x') + "iPod"), NO) << "cut at 255 bytes";
    EXPECT_EQ(isiPod("iPod" + std::string(1000, 'x')), YES);
}

TEST_F(System, HasOneLibraryWithOneFunction) {
    EXPECT_EQ(__wrap_dlopen("/usr/lib/libz.dylib", 1), nullptr);
    void* const handle = __wrap_dlopen(library, 1);
    EXPECT_NE(__wrap_dlsym(handle, "GSSendAppPreferencesChanged"), nullptr);
    EXPECT_EQ(__wrap_dlsym(handle, "GSSendAppPreferencesChange"), nullptr);
    EXPECT_EQ(__wrap_dlsym(nullptr, "GSSendAppPreferencesChanged"), nullptr);
    EXPECT_EQ(__wrap_dlclose(nullptr), -1);
    EXPECT_EQ(__wrap_dlclose(handle), 0);
    EXPECT_EQ(__wrap_dlclose(handle), -1) << "closed already";
}

TEST_F(System, GraphicsServicesIsOpenedCalledAndClosed) {
    updatePref("ring-vibrate");
    EXPECT_THAT(
        phone().calls(),
        ElementsAre(opened, R"(dlsym("<library>", "GSSendAppPreferencesChanged") = true)",
                    R"(GSSendAppPreferencesChanged("com.apple.springboard", "ring-vibrate"))",
                    R"(dlclose("<library>") = 0)"));
    EXPECT_EQ(phone().device().openLibraries, 0);
}

TEST_F(System, EveryHandleIsGivenBack) {
    for (int i = 0; i < 5; ++i) {
        updatePref("silent-vibrate");
        EXPECT_EQ(phone().device().openLibraries, 0);
        EXPECT_EQ(phone().calls().back(), R"(dlclose("<library>") = 0)");
    }
}

TEST_F(System, WithoutTheLibraryNothingIsSent) {
    phone().remove(library);
    updatePref("ring-vibrate");
    EXPECT_THAT(phone().calls(), ElementsAre(notOpened));
    EXPECT_EQ(phone().device().openLibraries, 0);
}

TEST_F(System, ALibraryThatCannotBeLookedUpIsNone) {
    phone().remove(library);
    std::filesystem::create_symlink("GraphicsServices", phone().device().below(library));
    updatePref("ring-vibrate");
    EXPECT_THAT(phone().calls(), ElementsAre(notOpened));
}

TEST_F(System, ALibraryThatComesBackIsFound) {
    phone().remove(library);
    updatePref("ring-vibrate");
    phone().writeBytes(library, "");
    updatePref("ring-vibrate");
    EXPECT_EQ(phone().calls().front(), opened);
}

TEST_F(System, AKeyMayBeNil) {
    phone().log().clear();
    phone().exported<void(CFStringRef)>("updatePref")(nullptr);
    EXPECT_EQ(phone().calls()[2], R"(GSSendAppPreferencesChanged("com.apple.springboard", null))");
}

class Sound : public OnADevice {};

TEST_F(Sound, EverySoundIsTakenAndTraced) {
    AudioServicesPlaySystemSound(kSystemSoundID_Vibrate);
    AudioServicesPlaySystemSound(0xFFFFFFFF);
    EXPECT_THAT(calls(), ElementsAre("AudioServicesPlaySystemSound(4095)",
                                     "AudioServicesPlaySystemSound(4294967295)"));
    EXPECT_EQ(device().clock.now(), 0.0) << "without waiting for its end";
}

}  // namespace
}  // namespace quillet::test
