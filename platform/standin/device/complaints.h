// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <functional>
#include <set>
#include <string>
#include <utility>

#include "platform/standin/notifications/process_lock.h"

namespace quillet::standin {

/// What a device has to say of files of its own that it could not read or write, to whom its
/// process names. Each is said once. For any thread.
class Complaints {
public:
    using Sink = std::function<void(const std::string&)>;

    /// Without a sink they are kept to itself. It must not throw.
    explicit Complaints(Sink sink = {}) : sink_{std::move(sink)} {}

    void add(const std::filesystem::path& file, const std::string& complaint) {
        const std::string text = file.string() + ": " + complaint;
        if (isNew(text) && sink_) sink_(text);
    }

    bool isEmpty() const {
        const ProcessLock lock;
        return said_.empty();
    }

private:
    bool isNew(const std::string& text) {
        const ProcessLock lock;
        return said_.insert(text).second;
    }

    Sink sink_;
    /// Under the ProcessLock.
    std::set<std::string> said_;
};

}  // namespace quillet::standin
