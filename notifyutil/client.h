// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

#include "notifyutil/request.h"
#include "platform/standin/device/device.h"

namespace quillet {

/// One run of the program: a process of the device that uses its notification service.
class Client {
public:
    /// `request` must outlive the client. Throws std::runtime_error when there is no device at the
    /// root, or it cannot be used.
    explicit Client(const Request& request);

    /// Does what is asked for, in its order, and then waits for the posts that are still to come.
    /// False when the service failed in something. Throws std::runtime_error when the service is
    /// not what others have any more, or what is printed cannot be written. Signals that
    /// holdSignals holds end the waiting, and then the process.
    bool run();

private:
    void perform(const Operation& operation);
    void post(const std::string& name);
    void wait(const std::string& name, std::uint64_t count);
    /// Hands a token of `name` to `use`, which answers a status, and takes it back.
    template <class Use>
    void withToken(const std::string& name, Use use);
    /// Tells of a status that is none of success.
    void check(const std::string& name, std::uint32_t status);
    /// Tells that `name` was posted. `token` is one of the name's.
    void report(const std::string& name, int token) const;
    void waitForRest();
    /// Has the event loop stop when a signal has come.
    void lookForSignal();
    /// Ends the process by a signal that came, which the journal is told.
    void obeySignal();

    const Request& request_;
    standin::Device device_;
    /// Registrations that have not seen all their posts.
    int awaited_ = 0;
    /// Behind all operations.
    bool isAtEnd_ = false;
    bool hasFailed_ = false;
};

}  // namespace quillet
