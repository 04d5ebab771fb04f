// SPDX-License-Identifier: MIT
#include "springboard/messages.h"

#include <unistd.h>

#include <iostream>
#include <nlohmann/json.hpp>

#include "program/wall_clock.h"
#include "springboard/json.h"

namespace quillet {

namespace {

void say(bool json, const char* event, const std::string& message, const std::string& text) {
    if (!json) {
        std::cerr << text << std::endl;
        return;
    }
    std::cerr << toLine({{"time", isoTime(timeNow())},
                         {"pid", getpid()},
                         {"program", "springboard"},
                         {"event", event},
                         {"message", message}})
              << std::endl;
}

}  // namespace

void sayError(bool json, const std::string& text) {
    say(json, "error", text, "springboard: " + text);
}

void sayNote(bool json, const std::string& text) { say(json, "note", text, text); }

}  // namespace quillet
