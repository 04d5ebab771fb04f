// SPDX-License-Identifier: MIT
#pragma once

#include <systemd/sd-bus.h>

#include <functional>
#include <list>
#include <memory>
#include <string>

namespace quillet::bench {

/// A connection to the session's message bus, by which processes tell each other what our
/// notifications tell. See sd-bus(3). For one thread.
class Bus {
public:
    using Work = std::function<void()>;

    /// Throws std::runtime_error without a bus.
    Bus();

    /// Sends a signal of that name, and waits until it is written.
    void post(const std::string& name);

    /// Calls `work` in run() at each such signal from now on.
    void observe(const std::string& name, Work work);

    /// Calls those who observe, until stop() is called in one of them.
    void run();
    void stop() { isStopped_ = true; }

private:
    struct Close {
        void operator()(sd_bus* bus) const { sd_bus_flush_close_unref(bus); }
    };

    std::unique_ptr<sd_bus, Close> bus_;
    /// Where the connection has them.
    std::list<Work> observers_;
    bool isStopped_ = false;
};

}  // namespace quillet::bench
