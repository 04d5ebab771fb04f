// SPDX-License-Identifier: MIT
#include "tests/platforms/gnustep/bundle.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "platform/standin/flipswitch.h"
#include "platform/standin/runtime/module.h"
#include "prefs/prefs_loader.h"
#include "tests/platforms/gnustep/host.h"
#include "tests/platforms/gnustep/values.h"

namespace quillet::gnustep {

namespace {

/// The switch framework's view of an instance of the bundle's principal class.
class DataSource final : public standin::FSSwitchDataSource {
public:
    void serve(id instance) { instance_ = instance; }

    FSSwitchState stateForSwitchIdentifier(NSString identifier) override {
        FSSwitchState state = FSSwitchStateIndeterminate;
        asHost([&] { state = [instance_ stateForSwitchIdentifier:foundationString(identifier)]; });
        return state;
    }
    void applyState(FSSwitchState state, NSString forSwitchIdentifier) override {
        asHost([&] {
            [instance_ applyState:state forSwitchIdentifier:foundationString(forSwitchIdentifier)];
        });
    }

private:
    id instance_ = nil;
};

DataSource dataSource;

/// The module as the system's loader gave it.
standin::Module* module = nullptr;

template <std::size_t size>
struct Name {
    consteval Name(const char (&text)[size]) { std::ranges::copy(text, this->text); }
    char text[size];
};

template <class Type>
Type* exported(const char* name) {
    return reinterpret_cast<Type*>(module->symbol(name));
}

// What the tests call in place of the exported functions: as a host, and with strings of theirs.

template <class Answer, Name name>
Answer answer() {
    Answer answer = {};
    asHost([&] { answer = exported<Answer()>(name.text)(); });
    return answer;
}

template <Name name>
void call() {
    asHost([] { exported<void()>(name.text)(); });
}

template <Name name>
void callWith(CFStringRef string) {
    asHost([&] {
        exported<void(CFStringRef)>(name.text)(
            reinterpret_cast<CFStringRef>(foundationString(string)));
    });
}

template <Name name, class Function>
std::pair<std::string_view, void*> named(Function* function) {
    return {name.text, reinterpret_cast<void*>(function)};
}

template <Name name>
std::pair<std::string_view, void*> plain() {
    return named<name>(&call<name>);
}

class LoadedBundle final : public standin::Module {
public:
    void* symbol(const char* name) const override {
        static const std::array functions = {
            plain<"turnSpringBoardVibrationOff">(),
            plain<"restoreSpringBoardVibration">(),
            plain<"turnRingerVolumeOff">(),
            plain<"restoreRingerVolume">(),
            named<"isiPod">(&answer<BOOL, "isiPod">),
            named<"updatePref">(&callWith<"updatePref">),
            named<"notifyDarwinCenter">(&callWith<"notifyDarwinCenter">),
        };
        const auto* const found =
            std::ranges::find(functions, name, &std::pair<std::string_view, void*>::first);
        return found != functions.end() ? found->second : module->symbol(name);
    }
};

/// Foundation never unloads a bundle. Within one test program it is therefore loaded once, and for
/// each further device all that it remembers is made as it was then, and its class is sent `load`.
void loadAgain(::Class cls) {
    auto& preferences = *exported<PrefsLoader*>("_prefsLoader");
    [reinterpret_cast<id>(preferences) release];
    preferences = nullptr;
    *exported<BOOL>("GLOBAL_vibrateWhenRinging") = 0;
    *exported<BOOL>("GLOBAL_vibrateWhenSilent") = 0;
    [cls load];
}

void load(const std::filesystem::path& path) {
    const std::string folder = path.parent_path().string();
    ::NSBundle* const bundle =
        [::NSBundle bundleWithPath:[::NSString stringWithUTF8String:folder.c_str()]];
    const bool isLoaded = [bundle isLoaded] != NO;
    const ::Class cls = [bundle principalClass];
    if (cls == nil) throw standin::BundleError(folder + ": Foundation cannot load it");
    if (isLoaded) {
        loadAgain(cls);
        return;
    }
    static const auto handle = standin::openSharedObject(path);
    module = handle.get();
    dataSource.serve([[cls alloc] init]);
}

}  // namespace

std::unique_ptr<standin::Module> openBundle(const std::filesystem::path& path) {
    asHost([&] { load(path); });
    standin::registerClass({"RingerSwitch", [] {}, &dataSource});
    return std::make_unique<LoadedBundle>();
}

}  // namespace quillet::gnustep
