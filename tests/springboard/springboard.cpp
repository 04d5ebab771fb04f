// SPDX-License-Identifier: MIT
#include "tests/springboard/springboard.h"

#include <cstdlib>
#include <utility>

#include "platform/standin/device/new_phone.h"
#include "platform/standin/plist/property_list.h"

namespace quillet::test {

namespace fs = std::filesystem;

SpringBoard::SpringBoard() {
    // Whoever runs the tests may have a device of their own.
    unsetenv("QUILLET_ROOT");
    standin::makeNewPhone(root(), {});
    write(preferencesPath, standin::Dictionary{{"ios-vibrate-pattern", true}});
}

Outcome SpringBoard::run(Words words) {
    words.insert(words.begin(), {"--root", root()});
    return runBare({.words = std::move(words), .output = {}, .errors = {}});
}

Outcome SpringBoard::runBare(Start how) {
    const fs::path output = folder() / "output";
    const fs::path errors = folder() / "errors";
    if (how.output.empty()) how.output = output;
    if (how.errors.empty()) how.errors = errors;
    const int status = waitFor(start(QUILLET_SPRINGBOARD, how));
    return {status, fs::exists(output) ? readText(output) : "", readText(errors)};
}

void SpringBoard::expectOutput(const Words& words, const std::string& output) {
    const Outcome outcome = run(words);
    EXPECT_EQ(outcome.status, 0) << testing::PrintToString(words);
    EXPECT_EQ(outcome.output, output) << testing::PrintToString(words);
    EXPECT_EQ(outcome.errors, "") << testing::PrintToString(words);
}

void SpringBoard::expectFailure(const Outcome& outcome, int status, const std::string& message) {
    EXPECT_EQ(outcome.status, status) << outcome.errors;
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(outcome.errors.rfind("springboard: ", 0), 0U) << outcome.errors;
    EXPECT_NE(outcome.errors.find(message), std::string::npos)
        << message << " is not in: " << outcome.errors;
    EXPECT_TRUE(outcome.errors.ends_with("\n"));
}

fs::path SpringBoard::onDevice(const std::string& path) const { return root().string() + path; }

void SpringBoard::write(const std::string& path, const standin::Value& value) const {
    writeText(onDevice(path), standin::writePropertyList(value));
}

std::string SpringBoard::bytes(const std::string& path) const { return readText(onDevice(path)); }

standin::Dictionary SpringBoard::dictionary(const std::string& path) const {
    const auto value = standin::readPropertyList(bytes(path));
    const auto* const found = value ? std::get_if<standin::Dictionary>(&*value) : nullptr;
    return found ? *found : standin::Dictionary{};
}

}  // namespace quillet::test
