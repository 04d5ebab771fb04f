// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>

#include <filesystem>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/bundle.h"
#include "platform/standin/flipswitch.h"
#include "platform/standin/runtime/data_source.h"
#include "tests/standin/runtime/bundle_folder.h"
#include "tests/support/machine.h"

namespace quillet::test {
namespace {

namespace fs = std::filesystem;
using standin::Dictionary;
using standin::FSSwitchDataSource;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr char identifier[] = "a.switch";

/// A switch that answers the state it is told to and notes what is asked of it.
class TestSwitch : public FSSwitchDataSource {
public:
    FSSwitchState stateForSwitchIdentifier(NSString ofSwitch) override {
        notes.push_back("state of " + std::string{standin::text(ofSwitch)});
        return state;
    }
    void applyState(FSSwitchState applied, NSString toSwitch) override {
        notes.push_back("apply " + std::to_string(applied) + " to " +
                        std::string{standin::text(toSwitch)});
    }
    void switchWasRegisteredForIdentifier(NSString ofSwitch) override {
        notes.push_back("registered " + std::string{standin::text(ofSwitch)});
    }

    FSSwitchState state = FSSwitchStateOff;
    std::vector<std::string> notes;
};

/// A switch that answers nothing itself.
class SilentSwitch : public FSSwitchDataSource {};

FSSwitchDataSource* loadedSwitch = nullptr;
std::vector<std::string>* loadedNotes = nullptr;

/// A module in this program: "opening" it makes the class of `loadedSwitch` known.
std::unique_ptr<standin::Module> openTestModule(const fs::path& /*path*/) {
    struct TestModule final : standin::Module {
        void* symbol(const char* /*name*/) const override { return nullptr; }
    };
    const auto load = [] {
        if (loadedNotes != nullptr) loadedNotes->push_back("load");
    };
    standin::registerClass({"OtherClass", [] {}, nullptr});
    const Class own{standin::registerClass({"TestSwitch", load, loadedSwitch})};
    if (loadedNotes != nullptr) {
        const NSString bundle = NSBundle::bundleForClass(own).bundleIdentifier();
        loadedNotes->push_back("of " + std::string{standin::text(bundle)});
    }
    return std::make_unique<TestModule>();
}

class Defaults : public testing::Test {
protected:
    fs::path bundle() const { return machine_.folder() / "Test.bundle"; }

    standin::SwitchFramework& framework() { return machine_.device().framework; }

    void load(FSSwitchDataSource& source, const Dictionary& more = {}) {
        Dictionary info{{"CFBundleIdentifier", std::string{identifier}},
                        {"CFBundleExecutable", std::string{"Test"}},
                        {"NSPrincipalClass", std::string{"TestSwitch"}}};
        for (const auto& [key, value] : more.entries()) info.set(key, value);
        writeInfo(bundle(), info);
        loadedSwitch = &source;
        machine_.device().framework.load(bundle());
    }

    FSSwitchDataSource& source() { return *framework().dataSource(identifier); }

    /// What text an object holds; "nil" for none.
    static std::string textOf(const NSString& string) {
        return string ? std::string{standin::text(string)} : "nil";
    }
    std::string title() { return textOf(source().titleForSwitchIdentifier(identifier)); }
    std::string glyph(FSSwitchState state) {
        return textOf(source().glyphImageDescriptorOfState(state, 29, 2, identifier));
    }

private:
    Machine machine_{{.openModule = openTestModule}};
};

TEST_F(Defaults, ThePrincipalClassIsSentLoadAndThenToldOfItsRegistration) {
    TestSwitch test;
    loadedNotes = &test.notes;
    load(test);
    loadedNotes = nullptr;
    EXPECT_THAT(test.notes, ElementsAre("load", "of a.switch", "registered a.switch"));
    EXPECT_EQ(&source(), &test);
}

TEST_F(Defaults, TwoBundlesMayNameTheirClassesAlike) {
    TestSwitch first;
    TestSwitch second;
    load(first);
    load(second, {{"CFBundleIdentifier", std::string{"another.switch"}}});
    EXPECT_EQ(framework().dataSource(identifier), &first);
    EXPECT_EQ(framework().dataSource("another.switch"), &second);
    EXPECT_THAT(first.notes, ElementsAre("registered a.switch"));
    EXPECT_THAT(second.notes, ElementsAre("registered another.switch"));
}

TEST_F(Defaults, ATapAsksForTheStateAndAppliesTheOpposite) {
    TestSwitch test;
    load(test);
    for (const auto& [state, applied] : {std::pair{FSSwitchStateOn, "apply 0 to a.switch"},
                                         std::pair{FSSwitchStateOff, "apply 1 to a.switch"}}) {
        test.state = state;
        test.notes.clear();
        source().applyActionForSwitchIdentifier(identifier);
        EXPECT_THAT(test.notes, ElementsAre("state of a.switch", applied));
    }
}

TEST_F(Defaults, ATapOnAnIndeterminateSwitchAppliesNothing) {
    TestSwitch test;
    load(test);
    test.state = FSSwitchStateIndeterminate;
    test.notes.clear();
    source().applyActionForSwitchIdentifier(identifier);
    EXPECT_THAT(test.notes, ElementsAre("state of a.switch"));
}

TEST_F(Defaults, ASwitchThatAnswersNothingIsIndeterminateAndTakesEveryMessage) {
    SilentSwitch silent;
    load(silent);
    EXPECT_EQ(source().stateForSwitchIdentifier(identifier), FSSwitchStateIndeterminate);
    source().applyState(FSSwitchStateOn, identifier);
    source().applyActionForSwitchIdentifier(identifier);
    source().switchWasRegisteredForIdentifier(identifier);
    source().switchWasUnregisteredForIdentifier(identifier);
    source().applyAlternateActionForSwitchIdentifier(identifier);
    EXPECT_EQ(source().stateForSwitchIdentifier(identifier), FSSwitchStateIndeterminate);
}

TEST_F(Defaults, ThereIsNoAlternateActionAndTheSwitchIsEnabled) {
    TestSwitch test;
    load(test);
    test.notes.clear();
    for (const char* const any : {identifier, "no.such.switch", ""}) {
        EXPECT_EQ(source().hasAlternateActionForSwitchIdentifier(any), NO) << any;
        EXPECT_EQ(source().switchWithIdentifierIsEnabled(any), YES) << any;
    }
    source().applyAlternateActionForSwitchIdentifier(identifier);
    EXPECT_THAT(test.notes, IsEmpty());
}

TEST_F(Defaults, TheBundleIsTheOneThatTheSwitchCameFrom) {
    SilentSwitch silent;
    load(silent);
    EXPECT_EQ(textOf(source().bundleForSwitchIdentifier(identifier).bundleIdentifier()),
              identifier);
    EXPECT_FALSE(source().bundleForSwitchIdentifier("no.such.switch"));
    EXPECT_FALSE(source().bundleForSwitchIdentifier(NSString{}));
}

TEST_F(Defaults, TheTitleComesFromTheDevelopmentLanguage) {
    SilentSwitch silent;
    load(silent, {{"CFBundleDisplayName", std::string{"Untranslated"}},
                  {"CFBundleDevelopmentRegion", std::string{"fr"}}});
    const Dictionary french{{"CFBundleDisplayName", std::string{"Sonnerie"}}};
    writeBytes(bundle() / "fr.lproj/InfoPlist.strings", standin::writePropertyList(french));
    const Dictionary english{{"CFBundleDisplayName", std::string{"Ringer"}}};
    writeBytes(bundle() / "en.lproj/InfoPlist.strings", standin::writePropertyList(english));
    EXPECT_EQ(title(), "Sonnerie");
}

TEST_F(Defaults, WithoutATranslationTheTitleComesFromThePropertyList) {
    SilentSwitch silent;
    load(silent, {{"CFBundleDisplayName", std::string{"Untranslated"}},
                  {"CFBundleDevelopmentRegion", std::string{"fr"}}});
    EXPECT_EQ(title(), "Untranslated");
    const fs::path strings = bundle() / "fr.lproj/InfoPlist.strings";
    for (const std::string& useless :
         {std::string{"broken"}, standin::writePropertyList(Dictionary{}),
          standin::writePropertyList(Dictionary{{"CFBundleDisplayName", std::string{}}})}) {
        writeBytes(strings, useless);
        EXPECT_EQ(title(), "Untranslated") << useless;
    }
}

TEST_F(Defaults, WithoutANameTheTitleIsTheIdentifier) {
    SilentSwitch silent;
    load(silent);
    EXPECT_EQ(title(), identifier);
    EXPECT_EQ(textOf(source().titleForSwitchIdentifier("no.such.switch")), "no.such.switch");
}

TEST_F(Defaults, TheGlyphIsTheBundlesDrawingForTheState) {
    SilentSwitch silent;
    load(silent);
    writeBytes(bundle() / "glyph-on.pdf", "on");
    writeBytes(bundle() / "glyph-off.pdf", "off");
    EXPECT_EQ(glyph(FSSwitchStateOn), bundle() / "glyph-on.pdf");
    EXPECT_EQ(glyph(FSSwitchStateOff), bundle() / "glyph-off.pdf");
    EXPECT_EQ(glyph(FSSwitchStateIndeterminate), bundle() / "glyph-on.pdf");
    fs::remove(bundle() / "glyph-off.pdf");
    EXPECT_EQ(glyph(FSSwitchStateOff), "nil");
    EXPECT_FALSE(source().glyphImageDescriptorOfState(FSSwitchStateOn, 29, 2, "no.such.switch"));
}

}  // namespace
}  // namespace quillet::test
