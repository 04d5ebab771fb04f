// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "springboard/options.h"

// CLI11's headers take long to compile: families of commands do without.
namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace quillet {

// How a command is told to the command line. What its own options and words say is kept by what
// runs it: an object that both share, as the description is gone by then.

using Run = std::function<void(const Options&)>;
using Take = std::function<void(const std::string&)>;

/// Adds a command to the program, or to a command. `run` is called with the options when it is the
/// last command of the line. All pointers are to texts that outlive `parent`.
CLI::App& addCommand(CLI::App& parent, const char* name, const char* meaning, Options& options,
                     Run run);

/// Adds a command that is nothing without one of the commands that will be added to it.
CLI::App& addGroup(CLI::App& parent, const char* name, const char* meaning, Options& options);

/// Adds an option, or the place of a word, of which the last argument counts, to no group.
CLI::Option& add(CLI::App& app, const char* names, const char* type, const char* meaning,
                 const Take& take);

/// Has the help of a command end with `footer`, as it stands.
void explain(CLI::App& command, const char* footer);

/// Adds an option to a command, such as "-o,--output", of which the last argument counts. `type` is
/// how the help calls the argument.
void addOption(CLI::App& command, const char* names, const char* type, const char* meaning,
               const Take& take);

/// Adds an option without an argument, which `take` hears of.
void addFlag(CLI::App& command, const char* names, const char* meaning,
             const std::function<void()>& take);

/// Adds the place of a word to a command. It may be left out.
void addWord(CLI::App& command, const char* name, const char* type, const char* meaning,
             const Take& take);

/// The same, which may not be left out.
void addNeededWord(CLI::App& command, const char* name, const char* type, const char* meaning,
                   const Take& take);

/// Adds a place for any number of words.
void addWords(CLI::App& command, const char* name, const char* type, const char* meaning,
              const std::function<void(const std::vector<std::string>&)>& take);

/// Has completion offer `words` for an option of `app`, or for the word in a place, of that name.
void offer(CLI::App& app, const char* name, const std::vector<std::string>& words);

/// The same for the names of files, where it is not called FILE.
void offerFiles(CLI::App& app, const char* name);

// The commands, by families.

/// state, flip, apply, watch.
void addSwitchCommands(CLI::App& app, Options& options);

/// status, log.
void addLookingCommands(CLI::App& app, Options& options);

/// new, model, host, erase.
void addDeviceCommands(CLI::App& app, Options& options);

/// prefs.
void addPrefsCommands(CLI::App& app, Options& options);

/// trace diff, timeline.
void addTraceCommands(CLI::App& app, Options& options);

/// plist.
void addPlistCommands(CLI::App& app, Options& options);

/// help, version, completion.
void addOwnCommands(CLI::App& app, Options& options);

}  // namespace quillet
