// SPDX-License-Identifier: MIT
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstring>

#include "platform/bundle.h"
#include "prefs/prefs_loader.h"
#include "tests/support/phone.h"
#include "tests/support/under_test.h"

namespace quillet::test {
namespace {

/// The shared preferences of the module that is loaded or being loaded; null when there are none.
PrefsLoader* sharedPreferences() {
    const auto path = bundleUnderTest() / "Quillet";
    void* const module = dlopen(path.c_str(), RTLD_LAZY | RTLD_NOLOAD);
    if (module == nullptr) return nullptr;
    auto* const preferences = static_cast<PrefsLoader**>(dlsym(module, "_prefsLoader"));
    PrefsLoader* const answer = *preferences;
    dlclose(module);
    return answer;
}

TEST(ElfLoading, StoresThePreferencesBeforeItObserves) {
    const TemporaryFolder folder;
    standin::Device device{{.root = folder.path() / "root"}};
    std::vector<std::pair<std::string, bool>> stored;
    device.trace.setSink([&](const standin::TraceRecord& record) {
        stored.emplace_back(record.operation, sharedPreferences() != nullptr);
    });
    device.framework.load(bundleUnderTest());
    const std::vector<std::pair<std::string, bool>> expected = {
        {"init", false},
        {"CFNotificationCenterGetDarwinNotifyCenter", true},
        {"CFNotificationCenterAddObserver", true},
    };
    EXPECT_EQ(stored, expected);
}

TEST(ElfPreferencesClass, IsOfTheModuleAndStandsInFrontOfItsObjectsFlags) {
    Phone phone;
    void* word = nullptr;
    std::memcpy(&word, &phone.preferences(), sizeof word);
    ASSERT_NE(word, nullptr) << "no constructor may touch it";
    EXPECT_EQ(standin::instanceOf(word)->description(), "PrefsLoader");
    const NSString identifier = NSBundle::bundleForClass(Class{word}).bundleIdentifier();
    EXPECT_EQ(standin::text(identifier), switchIdentifier);
}

}  // namespace
}  // namespace quillet::test
