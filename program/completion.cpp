// SPDX-License-Identifier: MIT
#include "program/completion.h"

#include <algorithm>
#include <array>

#include "program/usage_error.h"

namespace quillet {

namespace {

struct Shell {
    const char* name;
    std::string (*script)(const OfferedCommand&);
};

constexpr std::array known = {Shell{"bash", bashCompletion}, Shell{"zsh", zshCompletion},
                              Shell{"fish", fishCompletion}};

}  // namespace

std::vector<std::string> shells() {
    std::vector<std::string> names;
    names.reserve(known.size());
    for (const Shell& shell : known) names.emplace_back(shell.name);
    return names;
}

std::string completionScript(const OfferedCommand& program, const std::string& shell) {
    for (const auto& [name, script] : known) {
        if (shell == name) return script(program);
    }
    throw UsageError("neither bash nor zsh nor fish: " + inQuotes(shell));
}

std::string inShort(const std::string& meaning) {
    return meaning.substr(0, std::min(meaning.find(';'), meaning.find(" (default:")));
}

std::string quoted(const std::string& text) {
    std::string word = "'";
    for (const char letter : text) {
        if (letter == '\'') {
            word += R"('\'')";
        } else {
            word += letter;
        }
    }
    return word + '\'';
}

std::string spaced(const std::vector<std::string>& words) {
    std::string text;
    for (const std::string& word : words) text += (text.empty() ? "" : " ") + word;
    return text;
}

}  // namespace quillet
