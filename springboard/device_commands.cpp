// SPDX-License-Identifier: MIT
#include <filesystem>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <stdexcept>
#include <string>

#include "program/output.h"
#include "springboard/arguments.h"
#include "springboard/commands.h"
#include "springboard/json.h"
#include "springboard/phone.h"

namespace quillet {

namespace {

using standin::DeviceFacts;
using standin::DeviceRoot;

constexpr char modelFooter[] =
    R"(Models whose name contains "iPod" save the ringtone volume when they
are muted, and put it back afterwards. A new phone is an iPhone6,1.
)";

constexpr char hostFooter[] =
    R"(The variant is a list, separated by commas, of indicator=WORD and media=WORD,
for the class that shows the indicator and the one that mutes. The words:
  class        the class answers the message itself (indicator only)
  instance     the class has a shared instance, which answers the message
  no-instance  the class has no shared instance
  deaf         the shared instance does not know the message
  absent       there is no such class

A new phone is indicator=class,media=instance.
)";

constexpr char newFooter[] =
    R"(What the phone is, --machine and --host say. Every command makes a phone
where there is none; this one fails where there is one.
)";

constexpr char eraseFooter[] =
    R"(All that the folder holds goes, files of your own too. The phone's model
and what its SpringBoard is like stay. A flip that is under way is waited
for; who watches the phone ends.
)";

void printFact(const Options& options, const char* what, const std::string& word) {
    print((options.json ? toLine({{what, word}}) : word) + '\n');
}

/// Has `change` change what the device is, in the process's turn.
template <class Change>
void changeFacts(const Options& options, Change change) {
    const DeviceRoot root = phoneOf(options);
    const Turn turn = takeTurn(options, root.path());
    const auto file = root.below(DeviceRoot::factsPath);
    DeviceFacts facts = standin::readFacts(file);
    change(facts);
    standin::writeFacts(file, facts);
    tellJournal(options, root.path(), "changed");
}

DeviceFacts factsThere(const Options& options) {
    return standin::readFacts(phoneOf(options).below(DeviceRoot::factsPath));
}

void model(const Options& options, const std::optional<std::string>& name) {
    if (!name) return printFact(options, "model", factsThere(options).machine);
    changeFacts(options, [&](DeviceFacts& facts) { facts.machine = *name; });
}

void host(const Options& options, const std::optional<standin::HostVariant>& variant) {
    if (!variant) return printFact(options, "host", textOf(factsThere(options).host));
    changeFacts(options, [&](DeviceFacts& facts) { facts.host = *variant; });
}

void makeNew(const Options& options) {
    const auto phone = standin::makeNewPhone(rootOf(options), newFiles(), factsOf(options));
    const DeviceRoot root{phone.path};
    if (!phone.isNew) {
        throw std::runtime_error(phone.path.string() +
                                 ": a device is there; \"springboard erase\" makes it new");
    }
    tellNewPhone(options, root.path());
    tellJournal(options, root.path(), "made");
}

/// What the device is, if it still tells that.
DeviceFacts factsBefore(const std::filesystem::path& root) {
    try {
        return standin::readFacts(DeviceRoot::below(root, DeviceRoot::factsPath));
    } catch (const std::runtime_error&) {
        return {};
    }
}

void erase(const Options& options) {
    const auto root = DeviceRoot::locate(rootOf(options));
    if (!DeviceRoot::isDevice(root))
        throw std::runtime_error(root.string() + ": no device is there");
    const Turn turn = takeTurn(options, root);
    DeviceFacts facts = factsBefore(root);
    if (options.machine) facts.machine = *options.machine;
    if (options.host) facts.host = *options.host;
    standin::eraseDevice(root, newFiles(), facts);
    tellNewPhone(options, root);
    tellJournal(options, root, "erased");
}

void addNew(CLI::App& app, Options& options) {
    const auto folder = std::make_shared<std::filesystem::path>();
    CLI::App& command =
        addCommand(app, "new", "make a new phone", options, [folder](Options chosen) {
            if (!folder->empty()) chosen.root = *folder;
            makeNew(chosen);
        });
    addWord(command, "DIR", "a folder", "where, in place of --root",
            [folder](auto& word) { *folder = nonEmpty("DIR", word); });
    explain(command, newFooter);
}

void addModel(CLI::App& app, Options& options) {
    const auto name = std::make_shared<std::optional<std::string>>();
    CLI::App& command =
        addCommand(app, "model", "print the phone's model, or make it another one", options,
                   [name](const Options& chosen) { model(chosen, *name); });
    addWord(command, "NAME", "a name", "the model from now on, as uname(3) tells it",
            [name](auto& word) { *name = machineName(word); });
    explain(command, modelFooter);
}

void addHost(CLI::App& app, Options& options) {
    const auto variant = std::make_shared<std::optional<standin::HostVariant>>();
    CLI::App& command =
        addCommand(app, "host", "print what SpringBoard's classes are like, or make them so",
                   options, [variant](const Options& chosen) { host(chosen, *variant); });
    addWord(command, "VARIANT", "a variant", "what they are like from now on",
            [variant](auto& word) { *variant = hostVariant(word); });
    explain(command, hostFooter);
}

}  // namespace

void addDeviceCommands(CLI::App& app, Options& options) {
    addNew(app, options);
    addModel(app, options);
    addHost(app, options);
    explain(addCommand(app, "erase", "make the phone new again", options, erase), eraseFooter);
}

}  // namespace quillet
