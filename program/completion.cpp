// SPDX-License-Identifier: MIT
#include "program/completion.h"

#include <algorithm>

#include "program/usage_error.h"

namespace quillet {

std::string completionScript(const OfferedCommand& program, const std::string& shell) {
    if (shell == "bash") return bashCompletion(program);
    if (shell == "zsh") return zshCompletion(program);
    if (shell == "fish") return fishCompletion(program);
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
