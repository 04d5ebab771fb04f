// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <utility>

#include "platform/standin/notifications/process_lock.h"
#include "platform/standin/plist/value.h"

namespace quillet::standin {

/// What a device has to say of files that it could not read or write, to whom its process names.
/// Each is said once. For any thread.
class Complaints {
public:
    using Sink = std::function<void(const std::string&)>;

    /// Without a sink they are kept to itself. It must not throw.
    explicit Complaints(Sink sink = {}) : sink_{std::move(sink)} {}

    /// Of a file that the device needs for what it is to do.
    void add(const std::filesystem::path& file, const std::string& complaint) {
        mention(file, complaint);
        const ProcessLock lock;
        isEmpty_ = false;
    }

    /// Of one that it goes on without, as it should: what is said so does not count.
    void mention(const std::filesystem::path& file, const std::string& remark) {
        const std::string text = file.string() + ": " + remark;
        if (isNew(text) && sink_) sink_(text);
    }

    bool isEmpty() const {
        const ProcessLock lock;
        return isEmpty_;
    }

private:
    bool isNew(const std::string& text) {
        const ProcessLock lock;
        return said_.insert(text).second;
    }

    Sink sink_;
    // Under the ProcessLock.
    std::set<std::string> said_;
    bool isEmpty_ = true;
};

/// See dictionary_file.h. A file that is there and holds no dictionary counts as none, and is
/// mentioned with the place of its fault.
std::optional<Dictionary> readDictionary(const std::filesystem::path& path, Complaints& complaints);

}  // namespace quillet::standin
