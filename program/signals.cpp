// SPDX-License-Identifier: MIT
#include "program/signals.h"

#include <array>
#include <atomic>
#include <chrono>
#include <csignal>

namespace quillet {

namespace {

using Time = std::chrono::steady_clock::duration;

/// One request may come twice: timeout(1) sends its signal to the process and to its group.
constexpr std::chrono::milliseconds oneRequest{10};

// What a handler may use. Nothing was held, or asked for, while they are 0.
volatile std::sig_atomic_t firstSignal = 0;
std::atomic<Time::rep> firstRequest = 0;
static_assert(std::atomic<Time::rep>::is_always_lock_free);

/// In a handler, as soon as that has returned.
void endBy(int signal) {
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

/// Whether somebody who has asked for the end asks for it again.
bool isSecondRequest() {
    const Time::rep now = std::chrono::steady_clock::now().time_since_epoch().count();
    Time::rep first = 0;
    return !firstRequest.compare_exchange_strong(first, now) && Time{now - first} > oneRequest;
}

void hold(int signal) {
    if (firstSignal == 0) firstSignal = signal;
    const bool isRequest = signal == SIGINT || signal == SIGTERM;
    if (isRequest && isSecondRequest()) endBy(signal);
}

}  // namespace

void holdSignals() {
    constexpr std::array signals = {SIGHUP, SIGINT, SIGPIPE, SIGTERM, SIGXFSZ};
    struct sigaction holding {};
    holding.sa_handler = hold;
    holding.sa_flags = SA_RESTART;
    for (const int signal : signals) sigaddset(&holding.sa_mask, signal);
    for (const int signal : signals) {
        struct sigaction before {};
        sigaction(signal, nullptr, &before);
        if (before.sa_handler != SIG_IGN) sigaction(signal, &holding, nullptr);
    }
}

int heldSignal() { return firstSignal; }

void obeyHeldSignal() {
    if (firstSignal != 0) endBy(firstSignal);
}

}  // namespace quillet
