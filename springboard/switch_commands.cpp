// SPDX-License-Identifier: MIT
#include <memory>
#include <optional>

#include "springboard/arguments.h"
#include "springboard/commands.h"
#include "springboard/host_process.h"

namespace quillet {

namespace {

constexpr char applyFooter[] = R"(The number:
  0            off: the state is stored, and the ringer muted
  1            on: the state is stored, and the ringer unmuted
  -1           no change is asked for
  any other    the ringer is unmuted, and no state stored
)";

constexpr char watchFooter[] =
    R"(The first line is the state now. Then, from whichever process: the time, the
state, and what brought it about, or what was seen or felt.
)";

using State = std::optional<std::int32_t>;

void addExplain(CLI::App& command, Options& options) {
    addFlag(
        command, "--explain",
        "tell the steps in words, with their times, and what was left behind, on standard error",
        [&options] { options.explains = true; });
}

void addFlip(CLI::App& app, Options& options) {
    const auto state = std::make_shared<State>();
    CLI::App& flip =
        addCommand(app, "flip", "turn the switch on or off, or tap it; print the new state",
                   options, [state](const Options& chosen) { HostProcess{chosen}.flip(*state); });
    addWord(flip, "on|off", "on or off",
            "the state to apply; without it, the opposite of what it is",
            [state](auto& word) { *state = onOrOff(word); });
    addExplain(flip, options);
}

void addApply(CLI::App& app, Options& options) {
    const auto state = std::make_shared<State>();
    CLI::App& apply = addCommand(
        app, "apply", "apply the state N, a 32-bit signed number; print the state afterwards",
        options, [state](const Options& chosen) { HostProcess{chosen}.apply(*state); });
    addNeededWord(apply, "N", "a number", "the state to apply",
                  [state](auto& word) { *state = number(word); });
    addExplain(apply, options);
    explain(apply, applyFooter);
}

void addWatch(CLI::App& app, Options& options) {
    const auto isQuiet = std::make_shared<bool>(false);
    CLI::App& watch = addCommand(
        app, "watch", "tell what is seen and felt of the phone, until interrupted", options,
        [isQuiet](const Options& chosen) { HostProcess{chosen}.watch(*isQuiet); });
    addFlag(watch, "-q,--quiet", R"(only "on" or "off", at each refresh of the switch)",
            [isQuiet] { *isQuiet = true; });
    explain(watch, watchFooter);
}

}  // namespace

void addSwitchCommands(CLI::App& app, Options& options) {
    addCommand(app, "state", R"(print the switch's state, "on" or "off")", options,
               [](const Options& chosen) { HostProcess{chosen}.printState(); });
    addFlip(app, options);
    addApply(app, options);
    addWatch(app, options);
}

}  // namespace quillet
