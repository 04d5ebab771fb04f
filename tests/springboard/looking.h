// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/types.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tests/springboard/springboard.h"

namespace quillet::test {

using Json = nlohmann::json;

/// Programs that run beside the commands of the test.
class Looking : public SpringBoard {
protected:
    ~Looking() override {
        for (const pid_t process : running_) {
            ::kill(process, SIGKILL);
            waitFor(process);
        }
    }

    pid_t begin(Words words, const std::string& name) {
        words.insert(words.begin(), {"--root", root()});
        const pid_t process = start(QUILLET_SPRINGBOARD, {.words = words,
                                                          .output = folder() / (name + ".output"),
                                                          .errors = folder() / (name + ".errors")});
        running_.push_back(process);
        return process;
    }
    int end(pid_t process) {
        std::erase(running_, process);
        return waitFor(process);
    }
    int kill(pid_t process, int signal) {
        ::kill(process, signal);
        return end(process);
    }
    std::string outputOf(const std::string& name) const {
        return readText(folder() / (name + ".output"));
    }
    std::string errorsOf(const std::string& name) const {
        return readText(folder() / (name + ".errors"));
    }
    bool isTold(const std::string& name, const std::string& text) const {
        return becomesTrue([&] { return outputOf(name).find(text) != std::string::npos; });
    }

    /// A flip off that is stopped in its first wait, the user's settings put aside.
    pid_t stopAmidAFlip() {
        write(preferencesPath, standin::Dictionary{{"ios-vibrate-pattern", false}});
        const pid_t process = begin({"--trace", "flip", "off"}, "killed");
        EXPECT_TRUE(becomesTrue(
            [&] { return errorsOf("killed").find("runUntilDate:") != std::string::npos; }));
        ::kill(process, SIGSTOP);  // So that it does not end meanwhile.
        return process;
    }

    Json status() { return Json::parse(run({"--json", "status"}).output); }

    /// Lines of a log or a watch.
    static std::vector<Json> parsed(const std::string& lines) {
        std::vector<Json> objects;
        for (const std::string& line : linesOf(lines)) objects.push_back(Json::parse(line));
        return objects;
    }
    static Words eventsIn(const std::string& lines) {
        Words events;
        for (const Json& object : parsed(lines)) events.push_back(object["event"]);
        return events;
    }

private:
    std::vector<pid_t> running_;
};

}  // namespace quillet::test
