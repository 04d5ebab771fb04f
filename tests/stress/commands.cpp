// SPDX-License-Identifier: MIT
#include "tests/stress/commands.h"

namespace quillet::test {

namespace {

Words onIPod(Words words) {
    words.insert(words.begin(), {"--machine", "iPod5,1"});
    return words;
}

}  // namespace

std::vector<Command> commandsThatWrite(Extent extent) {
    const Words state = {"state"};
    const Words off = {"flip", "off"};
    const Words on = {"flip", "on"};
    std::vector<Command> commands = {
        {"the making of a phone", state, {}, std::nullopt},
        {"flip off on an iPod", onIPod(off), {state}, false},
    };
    if (extent == Extent::brief) return commands;
    commands.insert(commands.end(), {
                                        {"flip on on an iPod", onIPod(on), {onIPod(off)}, true},
                                        {"flip off on a phone", off, {state}, false},
                                        {"flip on on a phone", on, {off}, true},
                                        {"a tap", {"flip"}, {off}, true},
                                        {"apply 2", {"apply", "2"}, {state}, true},
                                        {"the first flip of all", off, {}, false},
                                    });
    return commands;
}

}  // namespace quillet::test
