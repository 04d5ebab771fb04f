// SPDX-License-Identifier: MIT
#include "notifyutil/client.h"

#include <iostream>
#include <limits>
#include <stdexcept>

#include "platform/notify.h"
#include "program/default_root.h"
#include "program/output.h"
#include "program/signals.h"
#include "program/wall_clock.h"

namespace quillet {

namespace fs = std::filesystem;
using standin::DeviceRoot;

namespace {

/// The root, if there is a device: this program looks at one and makes none.
fs::path rootOf(const Request& request) {
    const fs::path root = request.root.empty() ? defaultRoot() : request.root;
    if (DeviceRoot::isDevice(root)) return root;
    throw std::runtime_error(root.string() + ": no device; springboard makes one");
}

}  // namespace

Client::Client(const Request& request)
    : request_{request},
      device_{{.root = rootOf(request), .author = {"notifyutil", request.command}}} {}

bool Client::run() {
    lookForSignal();
    for (const Operation& operation : request_.operations) {
        if (heldSignal() == 0) perform(operation);
    }
    isAtEnd_ = true;
    if (awaited_ > 0 && std::cout && heldSignal() == 0) waitForRest();
    obeySignal();
    if (!device_.notifications.isInPlace()) {
        throw std::runtime_error(
            "the notification service was removed, replaced or damaged meanwhile");
    }
    finishOutput();
    return !hasFailed_;
}

void Client::waitForRest() { device_.eventLoop.runUntil(std::numeric_limits<double>::infinity()); }

void Client::lookForSignal() {
    if (heldSignal() != 0) return device_.eventLoop.stop();
    device_.eventLoop.at(device_.clock.now() + standin::EventLoop::betweenLooks,
                         [this] { lookForSignal(); });
}

void Client::obeySignal() {
    const int signal = heldSignal();
    if (signal != 0) device_.journal.add("ended", standin::Told{"signal", signal});
    obeyHeldSignal();
}

void Client::perform(const Operation& operation) {
    const std::string& name = operation.name;
    switch (operation.kind) {
        case Operation::Kind::post:
            post(name);
            break;
        case Operation::Kind::get:
            withToken(name, [&](int token) {
                std::uint64_t state = 0;
                const std::uint32_t status = notify_get_state(token, &state);
                if (status == NOTIFY_STATUS_OK) std::cout << name << ' ' << state << std::endl;
                return status;
            });
            break;
        case Operation::Kind::set:
            withToken(name, [&](int token) { return notify_set_state(token, operation.number); });
            break;
        case Operation::Kind::wait:
            wait(name, operation.number);
            break;
    }
}

void Client::post(const std::string& name) {
    check(name, notify_post(name.c_str()));
    const std::chrono::duration<double> pause = request_.pause;
    device_.eventLoop.runUntil(device_.clock.now() + pause.count());
}

void Client::wait(const std::string& name, std::uint64_t count) {
    int token = NOTIFY_TOKEN_INVALID;
    const std::uint32_t status = notify_register_check(name.c_str(), &token);
    if (status != NOTIFY_STATUS_OK) return check(name, status);
    const auto hear = [this, name, token, count, heard = std::uint64_t{0}]() mutable {
        if (heard == count) return;
        report(name, token);
        if (++heard == count) --awaited_;
        if (isAtEnd_ && (awaited_ == 0 || !std::cout)) device_.eventLoop.stop();
    };
    if (!device_.observers.add(name, hear)) return check(name, NOTIFY_STATUS_FAILED);
    ++awaited_;
}

template <class Use>
void Client::withToken(const std::string& name, Use use) {
    int token = NOTIFY_TOKEN_INVALID;
    std::uint32_t status = notify_register_check(name.c_str(), &token);
    if (status == NOTIFY_STATUS_OK) {
        status = use(token);
        notify_cancel(token);
    }
    check(name, status);
}

void Client::check(const std::string& name, std::uint32_t status) {
    if (status == NOTIFY_STATUS_OK) return;
    hasFailed_ = true;
    if (!request_.isQuiet) std::cerr << name << ": Failed with code " << status << '\n';
}

void Client::report(const std::string& name, int token) const {
    if (request_.isQuiet) return;
    if (!request_.isVerbose) {
        std::cout << name << std::endl;
        return;
    }
    std::uint64_t state = 0;
    notify_get_state(token, &state);
    std::cout << timeOfDay(timeNow()) << ' ' << name << ' ' << state << " observer" << std::endl;
}

}  // namespace quillet
