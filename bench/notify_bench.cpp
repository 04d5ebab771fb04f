// SPDX-License-Identifier: MIT
//
// Measures the notification service, and what it stands on:
//
//     notify-bench post N [ours|add|eventfd|dbus]
//     notify-bench read N [token|name|load|pread]
//     notify-bench wake N [ours|futex|dbus]
//
// Post and read print the median, the least and the first of N durations in nanoseconds, each the
// mean of a thousand calls; wake prints the median and the 99th percentile of N times from a post
// in one process to the callback in the run loop of another, which posts in turn. For dbus the
// session must have a message bus.
#include <fcntl.h>
#include <linux/futex.h>
#include <sys/eventfd.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <limits>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>

#include "bench/bus.h"
#include "bench/folder.h"
#include "bench/measure.h"
#include "platform/notify.h"
#include "platform/standin/device/device.h"
#include "platform/standin/files/descriptor.h"

namespace quillet::bench {
namespace {

using Work = std::function<void()>;

constexpr char name[] = "com.apple.springboard.ringerstate";
constexpr int batch = 1000;

standin::DeviceOptions phoneIn(const Folder& folder) { return {.root = folder.path() / "phone"}; }

/// What two processes share.
struct Shared {
    std::atomic<std::int64_t> posted;
    std::atomic<std::uint32_t> round;
    std::atomic<std::uint32_t> isReady;
    std::atomic<std::uint64_t> word;
    double durations[100000];
};

Shared& shareMemory() {
    constexpr int flags = MAP_SHARED | MAP_ANONYMOUS;
    void* const memory = mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE, flags, -1, 0);
    if (memory == MAP_FAILED) throw std::runtime_error("no memory to share");
    return *static_cast<Shared*>(memory);
}

std::int64_t now() {
    return std::chrono::nanoseconds{std::chrono::steady_clock::now().time_since_epoch()}.count();
}

void measurePost(int times, const std::string& engine) {
    const Folder folder;
    const standin::Device device{phoneIn(folder)};
    Shared& shared = shareMemory();
    const standin::Descriptor event{eventfd(0, EFD_NONBLOCK)};
    const std::uint64_t one = 1;
    std::optional<Bus> bus;
    if (engine == "dbus") bus.emplace();
    const std::map<std::string, Work> engines{
        {"ours", [] { notify_post(name); }},
        {"dbus", [&] { bus->post("Posted"); }},
        {"add", [&] { shared.word.fetch_add(1); }},
        {"eventfd", [&] { [[maybe_unused]] auto size = write(event.number(), &one, sizeof one); }}};
    print(measure(times, batch, engines.at(engine)));
}

void readByName() {
    int token = NOTIFY_TOKEN_INVALID;
    std::uint64_t state = 0;
    notify_register_check(name, &token);
    notify_get_state(token, &state);
    notify_cancel(token);
}

void measureRead(int times, const std::string& engine) {
    const Folder folder;
    const standin::Device device{phoneIn(folder)};
    Shared& shared = shareMemory();
    int token = NOTIFY_TOKEN_INVALID;
    notify_register_check(name, &token);
    std::uint64_t state = 0;
    const standin::Descriptor file{open("/proc/self/exe", O_RDONLY | O_CLOEXEC)};
    const std::map<std::string, Work> engines{
        {"token", [&] { notify_get_state(token, &state); }},
        {"name", readByName},
        {"load", [&] { state = shared.word.load(); }},
        {"pread", [&] { [[maybe_unused]] auto size = pread(file.number(), &state, 8, 0); }}};
    print(measure(times, batch, engines.at(engine)));
}

/// Runs `work` in a process of its own, which ends with it.
pid_t start(const Work& work) {
    const pid_t child = fork();
    if (child == 0) {
        work();
        _exit(0);
    }
    return child;
}

/// Our notifications in the shape of a Bus.
class Service {
public:
    explicit Service(const standin::DeviceOptions& options) : device_{options} {}

    static void post(const std::string& posted) { notify_post(posted.c_str()); }
    void observe(const std::string& observed, Work work) {
        device_.observers.add(observed, std::move(work));
    }
    void run() { device_.eventLoop.runUntil(std::numeric_limits<double>::infinity()); }
    void stop() { device_.eventLoop.stop(); }

private:
    standin::Device device_;
};

/// Posts in turn with another process from their callbacks: this one begins if it is the first.
template <class Notifications>
void callInTurn(Notifications&& notifications, Shared& shared, std::uint32_t rounds, bool isFirst) {
    const auto call = [&] {
        shared.posted.store(now());
        notifications.post(isFirst ? "ping" : "pong");
    };
    notifications.observe(isFirst ? "pong" : "ping", [&, calls = std::uint32_t{0}]() mutable {
        const double duration = static_cast<double>(now() - shared.posted);
        if (isFirst) shared.durations[calls] = duration;
        ++calls;
        if (!isFirst || calls < rounds) call();
        if (calls == rounds) notifications.stop();
    });
    if (isFirst) {
        while (shared.isReady.load() == 0) usleep(1000);
        call();
    } else {
        shared.isReady.store(1);
    }
    notifications.run();
}

void futex(std::atomic<std::uint32_t>& word, int operation, std::uint32_t value) {
    syscall(SYS_futex, &word, operation, value, nullptr, nullptr, 0);
}

/// Takes every second number of rounds, and hands on the next one.
void takeTurns(Shared& shared, std::uint32_t rounds, std::uint32_t first) {
    for (std::uint32_t round = first; round < 2 * rounds; round += 2) {
        for (;;) {
            const std::uint32_t seen = shared.round.load();
            if (seen == round) break;
            futex(shared.round, FUTEX_WAIT, seen);
        }
        if (first == 1) shared.durations[round / 2] = static_cast<double>(now() - shared.posted);
        if (first == 0) shared.posted.store(now());
        shared.round.store(round + 1);
        futex(shared.round, FUTEX_WAKE, 1);
    }
}

void measureWake(int times, const std::string& engine) {
    const Folder folder;
    Shared& shared = shareMemory();
    const auto rounds = static_cast<std::uint32_t>(times);
    pid_t child = 0;
    if (engine == "ours") {
        { const standin::Device made{phoneIn(folder)}; }
        child = start([&] { callInTurn(Service{phoneIn(folder)}, shared, rounds, false); });
        callInTurn(Service{phoneIn(folder)}, shared, rounds, true);
    } else if (engine == "dbus") {
        child = start([&] { callInTurn(Bus{}, shared, rounds, false); });
        callInTurn(Bus{}, shared, rounds, true);
    } else {
        child = start([&] { takeTurns(shared, rounds, 1); });
        takeTurns(shared, rounds, 0);
    }
    waitpid(child, nullptr, 0);
    printWithTail(Durations(shared.durations, shared.durations + rounds));
}

void work(const Words& words) {
    const std::string command = wordAt(words, 0);
    const int times = std::stoi(wordAt(words, 1));
    if (command == "post") return measurePost(times, wordAt(words, 2, "ours"));
    if (command == "read") return measureRead(times, wordAt(words, 2, "token"));
    if (command == "wake") return measureWake(times, wordAt(words, 2, "ours"));
    throw std::runtime_error("post, read or wake");
}

}  // namespace
}  // namespace quillet::bench

int main(int count, char** arguments) {
    return quillet::bench::run(count, arguments, quillet::bench::work);
}
