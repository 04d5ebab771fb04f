// SPDX-License-Identifier: MIT
#include <unistd.h>

#include <memory>
#include <string>
#include <vector>

#include "program/completion.h"
#include "program/help_text.h"
#include "program/output.h"
#include "springboard/arrange.h"
#include "springboard/commands.h"
#include "springboard/help.h"
#include "springboard/offers.h"

namespace quillet {

namespace {

constexpr char completionFooter[] = R"(Where the shells look for it:
  bash  ~/.local/share/bash-completion/completions/springboard
  zsh   a file _springboard in a folder of $fpath
  fish  ~/.config/fish/completions/springboard.fish
)";

void addCompletion(CLI::App& app, Options& options) {
    const auto script = std::make_shared<std::string>();
    CLI::App& command =
        addCommand(app, "completion", "print a script by which a shell completes command lines",
                   options, [script](const Options&) { print(*script); });
    addNeededWord(command, "bash|zsh|fish", "a shell", "the shell", [script, &app](auto& shell) {
        *script = completionScript(offersOf(app), shell);
    });
    explain(command, completionFooter);
}

}  // namespace

void addOwnCommands(CLI::App& app, Options& options) {
    const auto text = std::make_shared<std::string>();
    CLI::App& help = addCommand(app, "help", "print this help, or that of a command", options,
                                [text](const Options& chosen) {
                                    const auto& asked = text->empty() ? chosen.help : *text;
                                    print(helpFor(STDOUT_FILENO, chosen.color, asked));
                                });
    addWords(help, "COMMAND", "a command", "the command to explain",
             [text, &app](auto& names) { *text = helpOf(commandNamed(app, names)); });
    addCommand(app, "version", "print the version", options,
               [](const Options&) { print("springboard (Quillet) " QUILLET_VERSION "\n"); });
    addCompletion(app, options);
}

}  // namespace quillet
