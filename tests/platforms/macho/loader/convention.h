// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <cstring>
#include <tuple>

namespace quillet::macho {

// How the module's machine code and this system's call one another. On 64-bit processors both
// follow the same rules where it matters here. On 32-bit ARM they differ: the device aligns the
// stack and 64-bit arguments to words, where Linux aligns them to two, and does not keep r9.

/// Whether the device passes arguments as a row of words, whatever their types.
inline constexpr bool passesWords = sizeof(void*) == 4;

/// A function that takes its arguments from such a row.
using WordFunction = const void*;

/// Code for the module, in its convention: calls `function` with the row of words that the module
/// passes. It lives as long as the process. Only where passesWords.
const void* callableWithWords(WordFunction function);

/// Code for this system, in its convention: calls `code` of the module, with at most twelve words
/// of arguments on the stack. It lives as long as the process. Only where passesWords.
const void* callableInModule(const void* code);

template <class Argument>
Argument takeArgument(const std::uint32_t*& words) {
    Argument argument;
    std::memcpy(&argument, words, sizeof argument);
    words += (sizeof argument + sizeof *words - 1) / sizeof *words;
    return argument;
}

template <class Answer, class... Arguments>
Answer callWith([[maybe_unused]] const std::uint32_t* words, Answer (*function)(Arguments...)) {
    // The braces see to it that the first is taken first.
    return std::apply(function, std::tuple<Arguments...>{takeArgument<Arguments>(words)...});
}

/// The code by which the module calls a function of this system.
template <auto function>
const void* code() {
    if constexpr (passesWords) {
        constexpr auto call = +[](const std::uint32_t* words) { return callWith(words, function); };
        return callableWithWords(reinterpret_cast<WordFunction>(call));
    } else {
        return reinterpret_cast<const void*>(function);
    }
}

/// The same for a lambda, which captures nothing.
template <class Function>
const void* code(Function /*function*/) {
    constexpr auto function = +Function{};
    return code<function>();
}

/// A function of the module, for this system to call.
template <class Function>
Function* callable(Function* function) {
    if constexpr (passesWords) {
        return reinterpret_cast<Function*>(
            const_cast<void*>(callableInModule(reinterpret_cast<const void*>(function))));
    } else {
        return function;
    }
}

}  // namespace quillet::macho
