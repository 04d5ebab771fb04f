// SPDX-License-Identifier: MIT
#include <unistd.h>

#include <array>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>

#include "platform/standin/files/descriptor.h"
#include "platform/standin/files/file.h"
#include "platform/standin/plist/property_list.h"
#include "platform/standin/plist/value_on_tape.h"
#include "program/output.h"
#include "program/usage_error.h"
#include "springboard/commands.h"
#include "springboard/key_path.h"
#include "springboard/plist_text.h"

namespace quillet {

namespace {

using standin::Form;
using standin::Value;

constexpr char pathFooter[] = R"(A path:
  names            the value for the key "names" of the dictionary
  names.0          the first element of the array that this is
  names.0.de.com   the value there for "de.com", or else for "com" in that for "de"
)";

constexpr char jsonFooter[] = R"(What JSON lacks:
  a date            a string, "2001-01-01T00:00:00Z"
  data              a string in base64
  an identifier     {"CF$UID": 7}, as in the XML form
  no finite number  "nan", "+infinity" or "-infinity"
)";

constexpr char standardStream[] = "-";

/// A file with a property list, and what is in it.
struct PropertyListFile {
    /// For messages.
    std::string name;
    Value value;
};

std::string standardInput() {
    std::string bytes;
    std::array<char, 65536> chunk;
    while (bytes.size() <= standin::maxFileSize) {
        const auto size =
            standin::uninterrupted([&] { return read(STDIN_FILENO, chunk.data(), chunk.size()); });
        if (size < 0) throw std::runtime_error("standard input cannot be read");
        if (size == 0) break;
        bytes.append(chunk.data(), static_cast<std::size_t>(size));
    }
    return bytes;
}

std::string bytesOf(const std::string& file) {
    if (file == standardStream) return standardInput();
    auto bytes = standin::readFile(file, standin::maxFileSize);
    if (!bytes) throw std::runtime_error(file + ": cannot be read");
    return *std::move(bytes);
}

PropertyListFile readList(const std::string& file) {
    const std::string bytes = bytesOf(file);
    const std::string name = file == standardStream ? "standard input" : file;
    standin::Fault fault;
    auto value = standin::readPropertyList(bytes, &fault);
    if (!value) throw std::runtime_error(name + ": " + describe(fault, bytes));
    return {name, *std::move(value)};
}

void putTo(const std::string& file, const std::string& bytes) {
    if (file == standardStream) return print(bytes);
    if (!standin::writeFileAtomically(file, bytes)) {
        throw std::runtime_error(file + ": cannot be written");
    }
}

/// The value in a form, which is nothing for JSON.
std::string bytesIn(std::optional<Form> form, const PropertyListFile& file) {
    const auto bytes =
        form ? standin::rewritePropertyList(file.value, *form) : inJSON(file.value, Layout::lines);
    if (!bytes) throw std::runtime_error(file.name + ": too large in that form");
    return *bytes;
}

std::optional<Form> formFor(const Options& options) {
    return options.json ? std::nullopt : std::optional{Form::xml};
}

std::optional<Form> formNamed(const std::string& word) {
    if (word == "xml") return Form::xml;
    if (word == "binary") return Form::binary;
    if (word == "json") return std::nullopt;
    throw UsageError(inQuotes(word) + " is no form: xml, binary or json");
}

void printFile(const Options& options, const std::string& file) {
    print(bytesIn(formFor(options), readList(file)));
}

void get(const Options& options, const std::string& path, const std::string& name) {
    PropertyListFile file = readList(name);
    auto found = valueAt(file.value, path);
    if (!found) throw std::runtime_error(file.name + ": nothing is at " + inQuotes(path));
    file.value = *std::move(found);
    const bool isWords = !options.json && containerIn(file.value) == nullptr;
    print(isWords ? inWords(file.value) + '\n' : bytesIn(formFor(options), file));
}

/// What the words of a command say.
struct PlistWords {
    std::string file;
    std::string path;
    std::optional<Form> form;
    std::string output = standardStream;
};

void addFile(CLI::App& command, const std::shared_ptr<PlistWords>& words) {
    addNeededWord(command, "FILE", "a file", "any file of this machine; - is standard input",
                  [words](auto& file) { words->file = file; });
}

void addConvert(CLI::App& plist, Options& options) {
    const auto words = std::make_shared<PlistWords>();
    CLI::App& convert =
        addCommand(plist, "convert", "write the property list in a file in another form", options,
                   [words](const Options&) {
                       putTo(words->output, bytesIn(words->form, readList(words->file)));
                   });
    addNeededWord(convert, "FORM", "xml, binary or json", "xml, binary or json",
                  [words](auto& word) { words->form = formNamed(word); });
    offer(convert, "FORM", {"xml", "binary", "json"});
    addFile(convert, words);
    addOption(convert, "-o,--output", "OUT",
              "the file to write, which may be the same (default: standard output)",
              [words](auto& file) { words->output = file; });
    explain(convert, jsonFooter);
}

void addGet(CLI::App& plist, Options& options) {
    const auto words = std::make_shared<PlistWords>();
    CLI::App& command =
        addCommand(plist, "get", "print one value of a property list", options,
                   [words](const Options& chosen) { get(chosen, words->path, words->file); });
    addNeededWord(command, "KEYPATH", "a path", "where in the property list the value is",
                  [words](auto& path) { words->path = path; });
    addFile(command, words);
    explain(command, pathFooter);
}

}  // namespace

void addPlistCommands(CLI::App& app, Options& options) {
    CLI::App& plist =
        addGroup(app, "plist", "read property lists, whatever device they are of", options);
    const auto words = std::make_shared<PlistWords>();
    addFile(addCommand(plist, "print", "print a property list in the XML form, or as JSON", options,
                       [words](const Options& chosen) { printFile(chosen, words->file); }),
            words);
    addFile(addCommand(plist, "lint", "tell whether a file is a property list, or where it is none",
                       options,
                       [words](const Options&) { print(readList(words->file).name + ": OK\n"); }),
            words);
    addConvert(plist, options);
    addGet(plist, options);
}

}  // namespace quillet
