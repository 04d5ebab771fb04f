// SPDX-License-Identifier: MIT
#pragma once

#include <sys/types.h>

#include <filesystem>
#include <string>

#include "tests/support/program.h"

namespace quillet::test {

/// A host program that runs beside others, and is killed with the object.
class Companion {
public:
    explicit Companion(const Start& how);
    ~Companion() { kill(); }
    Companion(const Companion&) = delete;
    Companion& operator=(const Companion&) = delete;

    void kill();
    /// Whether it ends by itself, in time.
    bool ends();
    bool isRunning();
    /// See Outcome; meaningless while it runs.
    int status() const { return status_; }
    std::string errors() const { return readText(errors_); }

private:
    bool hasEnded();

    std::filesystem::path errors_;
    pid_t process_;
    bool isOver_ = false;
    int status_ = 0;
};

}  // namespace quillet::test
