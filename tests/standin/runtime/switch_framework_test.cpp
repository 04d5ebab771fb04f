// SPDX-License-Identifier: MIT
#include "platform/standin/runtime/switch_framework.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/notify.h"
#include "platform/standin/files/file.h"
#include "tests/standin/on_a_device.h"
#include "tests/standin/runtime/bundle_folder.h"
#include "tests/support/phone.h"
#include "tests/support/under_test.h"
#include "tests/support/values.h"

namespace quillet::test {
namespace {

namespace fs = std::filesystem;
using standin::BundleError;
using standin::Dictionary;
using standin::Value;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

constexpr char noPropertyList[] = "not a bundle (Info.plist: No such file or directory)";

/// Loads bundles, made for the test or broken by it, into the framework of a bare device.
class FrameworkLoader : public OnADevice {
protected:
    standin::SwitchFramework& framework() { return device().framework; }
    fs::path bundle() const { return folder() / "Some.bundle"; }

    /// A copy of the bundle under test, whose property list is that of the bundle but for `key`.
    void copyBundle(const std::string& key, Value value) {
        fs::copy(bundleUnderTest(), bundle(), fs::copy_options::recursive);
        auto info = std::get<Dictionary>(
            standin::readPropertyList(standin::readFile(bundle() / "Info.plist").value()).value());
        info.set(key, std::move(value));
        writeInfo(bundle(), info);
    }

    /// Why the bundle there cannot be loaded.
    std::string refusal(const fs::path& folder) {
        try {
            framework().load(folder);
        } catch (const BundleError& error) {
            return error.what();
        }
        return "none";
    }
    void expectRefused(const fs::path& folder, const std::string& reason) {
        EXPECT_EQ(refusal(folder), folder.string() + ": " + reason);
    }
    void expectNoModule() { EXPECT_THAT(refusal(bundle()), HasSubstr(bundle() / "NoModule")); }
};

TEST_F(FrameworkLoader, LoadsTheBundleUnderItsIdentifier) {
    EXPECT_EQ(framework().load(bundleUnderTest()), switchIdentifier);
    EXPECT_NE(framework().dataSource(switchIdentifier), nullptr);
    ASSERT_NE(framework().bundle(switchIdentifier), nullptr);
    EXPECT_EQ(framework().bundle(switchIdentifier)->info("CFBundleIdentifier"), switchIdentifier);
    EXPECT_NE(framework().symbol("isiPod"), nullptr);
}

TEST_F(FrameworkLoader, FindsNothingBeforeAnyBundleIsLoaded) {
    EXPECT_EQ(framework().dataSource(switchIdentifier), nullptr);
    EXPECT_EQ(framework().bundle(switchIdentifier), nullptr);
    EXPECT_EQ(framework().symbol("isiPod"), nullptr);
}

TEST_F(FrameworkLoader, FindsNothingUnderAnotherIdentifierOrName) {
    framework().load(bundleUnderTest());
    for (const char* const identifier : {"", "com.velk.switch", "com.velk.switch.Ringer"}) {
        EXPECT_EQ(framework().dataSource(identifier), nullptr) << identifier;
        EXPECT_EQ(framework().bundle(identifier), nullptr) << identifier;
    }
    EXPECT_EQ(framework().symbol("noSuchFunction"), nullptr);
}

TEST_F(FrameworkLoader, ARelativeFolderIsMeantFromTheWorkingFolder) {
    const fs::path before = fs::current_path();
    fs::current_path(bundleUnderTest().parent_path());
    EXPECT_EQ(framework().load(bundleUnderTest().filename()), switchIdentifier);
    fs::current_path(before);
    EXPECT_TRUE(framework().bundle(switchIdentifier)->path().is_absolute());
}

TEST_F(FrameworkLoader, AMissingFolderIsNoBundle) { expectRefused(bundle(), noPropertyList); }

TEST_F(FrameworkLoader, AFolderWithoutAPropertyListIsNoBundle) {
    fs::create_directory(bundle());
    expectRefused(bundle(), noPropertyList);
}

TEST_F(FrameworkLoader, AMalformedPropertyListMakesNoBundle) {
    writeBytes(bundle() / "Info.plist", "<plist version=\"1.0\"><dict><key>");
    expectRefused(
        bundle(),
        "not a bundle (Info.plist: line 1, column 33: an end of the file before that of the "
        "value)");
    writeBytes(bundle() / "Info.plist", standin::writePropertyList(standin::Array{}));
    expectRefused(bundle(), "not a bundle (Info.plist: it holds no dictionary)");
}

TEST_F(FrameworkLoader, ABundleNeedsAnIdentifier) {
    for (const Value& identifier : {Value{std::string{}}, Value{true}}) {
        SCOPED_TRACE(testing::PrintToString(identifier));
        writeInfo(bundle(), {{"CFBundleIdentifier", identifier}});
        expectRefused(bundle(), "the bundle has no identifier");
    }
    writeInfo(bundle(), {});
    expectRefused(bundle(), "the bundle has no identifier");
}

TEST_F(FrameworkLoader, ABundleNeedsAnExecutableInItsFolder) {
    const std::string inFolder = bundleUnderTest() / "Quillet";
    for (const std::string& executable : {std::string{}, inFolder, "../" + inFolder,
                                          std::string{"sub/Quillet"}, std::string{"Quillet/"}}) {
        SCOPED_TRACE(executable);
        writeInfo(bundle(), {{"CFBundleIdentifier", std::string{"a.switch"}},
                             {"CFBundleExecutable", executable}});
        expectRefused(bundle(), "the bundle names no executable");
    }
    writeInfo(bundle(), {{"CFBundleIdentifier", std::string{"a.switch"}}});
    expectRefused(bundle(), "the bundle names no executable");
}

TEST_F(FrameworkLoader, AnExecutableThatIsNoModuleIsRefused) {
    copyBundle("CFBundleExecutable", std::string{"NoModule"});
    expectNoModule();
    for (const char* const bytes : {"", "#!/bin/sh\n",
                                    "\x7F"
                                    "ELF cut off"}) {
        SCOPED_TRACE(testing::PrintToString(bytes));
        writeBytes(bundle() / "NoModule", bytes);
        expectNoModule();
    }
    fs::remove(bundle() / "NoModule");
    fs::create_directory(bundle() / "NoModule");
    expectNoModule();
}

TEST_F(FrameworkLoader, ThePrincipalClassMustBeOneOfTheModules) {
    copyBundle("NSPrincipalClass", std::string{"OtherSwitch"});
    expectRefused(bundle(), "the bundle has no principal class \"OtherSwitch\"");
    EXPECT_EQ(framework().dataSource(switchIdentifier), nullptr);
}

TEST_F(FrameworkLoader, NothingStaysOfABundleThatCouldNotBeLoaded) {
    copyBundle("NSPrincipalClass", std::string{"OtherSwitch"});
    int calls = 0;
    device().observers.add("a.name", [&] { ++calls; });
    const int instances = standin::Instance::live();
    expectRefused(bundle(), "the bundle has no principal class \"OtherSwitch\"");
    EXPECT_EQ(standin::Instance::live(), instances);
    EXPECT_EQ(device().observers.count(), 1U) << "its callback lies in a module that is gone";
    EXPECT_EQ(framework().symbol("isiPod"), nullptr);
    notify_post("com.apple.springboard.ringerstate");
    notify_post("a.name");
    device().eventLoop.turn();
    EXPECT_EQ(calls, 1) << "the host's own observer stays";
    EXPECT_EQ(framework().load(bundleUnderTest()), switchIdentifier);
}

TEST_F(FrameworkLoader, ABundleNeedsAPrincipalClass) {
    copyBundle("NSPrincipalClass", false);
    expectRefused(bundle(), "the bundle has no principal class \"\"");
}

TEST_F(FrameworkLoader, ASwitchIsLoadedOnce) {
    framework().load(bundleUnderTest());
    log().clear();
    expectRefused(bundleUnderTest(), "a switch \"com.velk.switch.ringer\" is loaded already");
    copyBundle("CFBundleDisplayName", std::string{"Copy"});
    expectRefused(bundle(), "a switch \"com.velk.switch.ringer\" is loaded already");
    EXPECT_THAT(calls(), IsEmpty()) << "the class was not sent load again";
    EXPECT_EQ(framework().bundle(switchIdentifier)->path(), bundleUnderTest());
}

TEST_F(FrameworkLoader, AfterAFailureTheSameSwitchCanBeLoaded) {
    copyBundle("CFBundleExecutable", std::string{"NoModule"});
    expectNoModule();
    EXPECT_EQ(framework().load(bundleUnderTest()), switchIdentifier);
    EXPECT_EQ(framework().bundle(switchIdentifier)->path(), bundleUnderTest());
}

TEST_F(FrameworkLoader, AfterAFailureClassesAreTheHostsAgain) {
    copyBundle("NSPrincipalClass", std::string{"OtherSwitch"});
    expectRefused(bundle(), "the bundle has no principal class \"OtherSwitch\"");
    const standin::ModuleClass& own = framework().add({"HostsOwn", [] {}, nullptr});
    EXPECT_EQ(own.bundle.info("CFBundleIdentifier"), "com.apple.springboard");
}

TEST_F(FrameworkLoader, AClassBelongsToTheBundleThatDefinesIt) {
    framework().load(bundleUnderTest());
    EXPECT_EQ(framework().bundleOf(Class{}).info("CFBundleIdentifier"), "com.apple.springboard");
    EXPECT_EQ(standin::text(NSBundle::bundleForClass(Class{}).bundleIdentifier()),
              "com.apple.springboard");
    standin::PlainInstance stranger{"Stranger"};
    EXPECT_EQ(framework().bundleOf(Class{standin::word(stranger)}).info("CFBundleIdentifier"),
              "com.apple.springboard");
}

TEST_F(FrameworkLoader, ThePanelAsksTheSwitchOnceAndDrawsItsAnswer) {
    framework().load(bundleUnderTest());
    std::vector<std::pair<std::string, FSSwitchState>> drawn;
    framework().setRedraw([&](std::string_view identifier, FSSwitchState state) {
        drawn.emplace_back(identifier, state);
    });
    log().clear();
    FSSwitchPanel::sharedPanel().stateDidChangeForSwitchIdentifier(switchIdentifier);
    EXPECT_THAT(drawn, ElementsAre(std::pair{std::string{switchIdentifier}, FSSwitchStateOn}));
    EXPECT_EQ(only(calls(), {"notify_get_state"}).size(), 1U);
}

TEST_F(FrameworkLoader, ThePanelIgnoresAnUnknownIdentifier) {
    framework().load(bundleUnderTest());
    bool drawn = false;
    framework().setRedraw([&](std::string_view, FSSwitchState) { drawn = true; });
    log().clear();
    const auto panel = FSSwitchPanel::sharedPanel();
    panel.stateDidChangeForSwitchIdentifier("no.such.switch");
    panel.stateDidChangeForSwitchIdentifier("");
    panel.stateDidChangeForSwitchIdentifier(NSString{});
    EXPECT_FALSE(drawn);
    EXPECT_THAT(only(calls(), {"notify_get_state"}), IsEmpty());
}

TEST_F(FrameworkLoader, ThePanelAsksEvenWhenNobodyDraws) {
    framework().load(bundleUnderTest());
    log().clear();
    FSSwitchPanel::sharedPanel().stateDidChangeForSwitchIdentifier(switchIdentifier);
    EXPECT_EQ(only(calls(), {"notify_get_state"}).size(), 1U);
}

}  // namespace
}  // namespace quillet::test
