// SPDX-License-Identifier: MIT
#include <dlfcn.h>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <signal.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <iostream>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "platform/notify.h"
#include "springboard/host_process.h"
#include "tests/springboard/springboard.h"
#include "tests/support/stride.h"
#include "tests/support/traced.h"

namespace quillet::test {
namespace {

namespace fs = std::filesystem;
using ::testing::AnyOf;
using ::testing::Contains;
using ::testing::Each;
using ::testing::Gt;
using ::testing::SizeIs;

constexpr int endings[] = {SIGHUP, SIGINT, SIGPIPE, SIGTERM, SIGXFSZ};

void become(int descriptor, int file) {
    if (dup2(file, descriptor) < 0) throw std::runtime_error("no stream");
}

void redirect(int descriptor, const fs::path& file) {
    const int opened = open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    become(descriptor, opened);
    close(opened);
}

/// A pipe with somebody at its end.
class Reader {
public:
    Reader() {
        if (pipe(ends_) != 0) throw std::runtime_error("no pipe");
    }
    ~Reader() {
        goAway();
        close(ends_[1]);
    }
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;

    void goAway() {
        if (ends_[0] >= 0) close(std::exchange(ends_[0], -1));
    }
    /// In the process that is read.
    void becomeStandardError() {
        goAway();
        become(STDERR_FILENO, ends_[1]);
    }

private:
    int ends_[2] = {-1, -1};
};

/// Flips a switch that vibrates by itself, and so changes SpringBoard's settings for a while.
class FlipUnderWay : public SpringBoard {
protected:
    using Prepare = std::function<void()>;
    using Event = std::function<void(Traced&)>;

    FlipUnderWay() { write(preferencesPath, standin::Dictionary{{"ios-vibrate-pattern", false}}); }

    /// A host of its own that turns the switch off, on a device whose time is virtual, stopped
    /// from its first message to the switch on.
    Traced flipOff(const Prepare& prepare = [] {}) const {
        return Traced{[&]() -> int {
            takeSignals();
            redirect(STDOUT_FILENO, output());
            redirect(STDERR_FILENO, errors());
            prepare();
            HostProcess host{options()};
            Traced::begin();
            // What has been made is left, as all that is asked is how the flip itself ends.
            _exit(flipOff(host));
        }};
    }

    /// How `flip` ends if something happens before the call of that number. Nothing when that is
    /// its end, or behind it.
    std::optional<int> statusOf(Traced& flip, std::size_t call, const Event& event) const {
        for (std::size_t i = 0; i <= call; ++i) {
            if (!flip.nextCall() || flip.call() == SYS_exit_group) return std::nullopt;
        }
        event(flip);
        const int status = flip.end();
        EXPECT_TRUE(areSettingsAsBefore()) << "before call " << call;
        return status;
    }

    /// How flips end if something happens before their first, their second, … system call, or as
    /// far apart as `stride` says.
    std::vector<int> statusesOf(
        const Event& event, const Prepare& prepare = [] {}) const {
        std::vector<int> statuses;
        for (;;) {
            Traced flip = flipOff(prepare);
            const auto status = statusOf(flip, statuses.size() * stride, event);
            if (!status) return statuses;
            statuses.push_back(*status);
        }
    }

    /// Lets `flip` go on until it has put its own settings in place of the user's.
    void goOnWithoutSettings(Traced& flip) const {
        while (areSettingsAsBefore()) ASSERT_TRUE(flip.nextCall());
    }

    /// From now on flips are traced, on standard error.
    void trace() { traces_ = true; }

    bool areSettingsAsBefore() const { return bytes(springBoardPreferencesPath) == settings_; }
    void putSettingsBack() const { writeText(onDevice(springBoardPreferencesPath), settings_); }

    fs::path output() const { return folder() / "flip.output"; }
    fs::path errors() const { return folder() / "flip.errors"; }

private:
    static int flipOff(HostProcess& host) {
        try {
            host.flip(0);
            return EXIT_SUCCESS;
        } catch (const std::runtime_error& error) {
            std::cerr << error.what() << '\n';
            return EXIT_FAILURE;
        }
    }

    Options options() const {
        Options options;
        options.traces = traces_;
        options.root = root();
        options.bundle = QUILLET_BUNDLE;
        options.clock = standin::Clock::Kind::virtualTime;
        return options;
    }

    bool traces_ = false;
    const std::string settings_ = bytes(springBoardPreferencesPath);
};

TEST_F(FlipUnderWay, EndsBeforeASignalEndsTheHost) {
    for (const int signal : endings) {
        const auto statuses = statusesOf([&](Traced& flip) {
            const bool isReported = !readText(output()).empty();
            flip.send(signal);
            const int status = flip.end();
            EXPECT_TRUE(status == -signal || (isReported && status == 0)) << status;
        });
        EXPECT_THAT(statuses, SizeIs(Gt(120 / stride)));
        EXPECT_THAT(statuses, Contains(-signal));
    }
}

TEST_F(FlipUnderWay, GoesOnIgnoringWhatTheHostIgnores) {
    const auto statuses =
        statusesOf([](Traced& flip) { flip.send(SIGHUP); }, [] { ::signal(SIGHUP, SIG_IGN); });
    EXPECT_THAT(statuses, Each(0));
}

TEST_F(FlipUnderWay, EndsWhenItsReaderGoesAway) {
    trace();
    std::vector<int> statuses;
    for (;;) {
        Reader reader;
        Traced flip = flipOff([&] { reader.becomeStandardError(); });
        const auto leave = [&](Traced&) { reader.goAway(); };
        const auto status = statusOf(flip, statuses.size() * stride, leave);
        if (!status) break;
        statuses.push_back(*status);
    }
    EXPECT_EQ(statuses.front(), 1);
    // The last of fewer places may lie before the last line.
    if (stride == 1) {
        EXPECT_EQ(statuses.back(), 0) << "all was read";
    }
    EXPECT_THAT(statuses, Each(AnyOf(0, 1)));
}

TEST_F(FlipUnderWay, IsGivenUpAtTheSecondRequest) {
    if (::dlsym(RTLD_DEFAULT, "__tsan_init") != nullptr) {
        GTEST_SKIP() << "the thread sanitizer hands signals on when it pleases";
    }
    using Pair = std::pair<int, int>;
    for (const auto& [first, second] :
         {Pair{SIGINT, SIGINT}, {SIGTERM, SIGTERM}, {SIGINT, SIGTERM}, {SIGTERM, SIGINT}}) {
        Traced flip = flipOff();
        goOnWithoutSettings(flip);
        flip.send(first);
        EXPECT_TRUE(flip.nextCall());
        std::this_thread::sleep_for(std::chrono::milliseconds{20});
        flip.send(second);
        EXPECT_EQ(flip.end(), -second);
        EXPECT_FALSE(areSettingsAsBefore()) << "nobody waited for that";
        putSettingsBack();
    }
}

TEST_F(FlipUnderWay, TakesARequestThatIsMadeTwiceAtOnceForOne) {
    Traced flip = flipOff();
    goOnWithoutSettings(flip);
    flip.send(SIGINT);
    flip.send(SIGTERM);
    EXPECT_EQ(flip.end(), -SIGINT);
    EXPECT_TRUE(areSettingsAsBefore());
}

TEST_F(FlipUnderWay, EndsHoweverOftenOtherSignalsCome) {
    Traced flip = flipOff();
    goOnWithoutSettings(flip);
    for (int i = 0; i < 20 && flip.nextCall(); ++i) {
        for (const int signal : {SIGHUP, SIGPIPE, SIGXFSZ}) flip.send(signal);
    }
    EXPECT_THAT(flip.end(), AnyOf(-SIGHUP, -SIGPIPE, -SIGXFSZ));
    EXPECT_TRUE(areSettingsAsBefore());
}

TEST_F(FlipUnderWay, ThatSomebodyElseUndoesSaysSo) {
    const auto turnOn = [this] {
        const standin::Device device{{.root = root()}};
        int token = NOTIFY_TOKEN_INVALID;
        notify_register_check("com.apple.springboard.ringerstate", &token);
        notify_set_state(token, 1);
        notify_cancel(token);
    };
    const std::string message = "the flip did not come about: the switch is on\n";
    int undone = 0;
    const auto statuses = statusesOf([&](Traced& flip) {
        turnOn();
        const bool isUndone = flip.end() == 1;
        undone += isUndone;
        EXPECT_EQ(readText(output()), isUndone ? "on\n" : "off\n");
        EXPECT_EQ(readText(errors()), isUndone ? message : "");
    });
    EXPECT_GT(undone, 0);
    EXPECT_LT(undone, static_cast<int>(statuses.size()));
}

}  // namespace
}  // namespace quillet::test
