// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tests/stress/system_calls.h"
#include "tests/support/traced.h"

namespace quillet::test {

/// A program whose system calls can be made to fail. For x86-64.
class Injured : public Traced {
public:
    using Traced::Traced;

    Stop next();

    /// The file or files that the call is about; empty when it is about none.
    std::string target(const SystemCall& call) const;

    /// What comes of the call that it stopped before: an error, which takes the place of the call
    /// (but `close` is made all the same, as by the system), or one byte.
    void fail(int error);

    /// The files that are open, and those that are mapped; once each, in order.
    std::vector<std::string> openFiles() const;
    std::vector<std::string> mappedFiles() const;

private:
    std::string text(std::uint64_t address) const;
    std::string fileNamed(std::uint64_t number) const;
    std::string inFolder(std::uint64_t folder, std::uint64_t path) const;
    void poke(std::size_t place, std::uint64_t value);
    void change(std::size_t place, std::size_t index, std::uint64_t value);
    void endCall();

    /// What the call that is under way shall answer; 0 for what it does.
    int error_ = 0;
    /// The place of a register that was changed, and what was there.
    std::optional<std::pair<std::size_t, std::uint64_t>> changed_;
};

}  // namespace quillet::test
