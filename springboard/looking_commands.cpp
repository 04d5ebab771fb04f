// SPDX-License-Identifier: MIT
#include <memory>

#include "springboard/commands.h"
#include "springboard/log.h"
#include "springboard/status.h"

namespace quillet {

namespace {

constexpr char logFooter[] =
    R"(Every program that uses the phone tells its journal, in /var/db/journal of the
phone, what it does to it. The last 256 KB at least are kept. Who died is
concluded from a start without an end.
)";

void addLog(CLI::App& app, Options& options) {
    const auto choice = std::make_shared<LogChoice>();
    CLI::App& log = addCommand(app, "log", "print what has happened to the phone", options,
                               [choice](const Options& chosen) { printLog(chosen, *choice); });
    addFlag(log, "-f,--follow", "go on with what happens, until interrupted",
            [choice] { choice->follows = true; });
    addOption(log, "--last", "TIME", "only what happened in the last 90s, 5m, 2h, 1d or so",
              [choice](auto& word) { choice->last = duration(word); });
    explain(log, logFooter);
}

}  // namespace

void addLookingCommands(CLI::App& app, Options& options) {
    addCommand(app, "status", "print how the phone stands, in words", options, printStatus);
    addLog(app, options);
}

}  // namespace quillet
