// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <limits>
#include <string>
#include <vector>

#include "program/terminal.h"

namespace quillet {

/// One thing to be done with a name of the notification service.
struct Operation {
    enum class Kind { post, get, set, wait };
    /// In place of a count of posts.
    static constexpr std::uint64_t endless = std::numeric_limits<std::uint64_t>::max();

    Kind kind = Kind::post;
    std::string name;
    /// The state to set, or how many posts to wait for.
    std::uint64_t number = 0;
};

/// What a command line asks for.
struct Request {
    enum class Kind { help, version, completion, operations };

    Kind kind = Kind::operations;
    /// In their order. None when the command line has none.
    std::vector<Operation> operations;
    /// Empty for the default.
    std::filesystem::path root;
    bool isVerbose = false;
    bool isQuiet = false;
    /// After each post.
    std::chrono::milliseconds pause{100};
    Color color = Color::automatic;
    /// To be completed for.
    std::string shell;
    /// The words of the line but for the long options, for whoever asks what was done.
    std::string command;
};

/// Reads the words of a command line. Throws UsageError.
Request readRequest(const std::vector<std::string>& words);

}  // namespace quillet
