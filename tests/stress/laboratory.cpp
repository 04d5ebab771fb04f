// SPDX-License-Identifier: MIT
#include "tests/stress/laboratory.h"

#include <linux/futex.h>
#include <sys/syscall.h>

#include <cerrno>
#include <stdexcept>

#include "platform/standin/runtime/dictionary_file.h"
#include "tests/stress/injured.h"
#include "tests/stress/marks.h"
#include "tests/stress/trace_file.h"

namespace quillet::test {

namespace fs = std::filesystem;

namespace {

constexpr char hardwarePath[] = "var/db/hardware.plist";
/// How often a signal interrupts a call at most.
constexpr long mostInterruptions = 100;
/// A program that calls the system more often than that will not end.
constexpr long mostCalls = 20'000;

/// A run under the tracer.
class Watched {
public:
    Watched(const Start& how, const std::vector<Fault>& faults)
        : program_{QUILLET_SPRINGBOARD, how}, faults_{faults}, met_(faults.size()) {}

    Run run() {
        for (;;) {
            const Injured::Stop stop = program_.next();
            if (stop == Injured::Stop::before) before();
            run_.isLate = stop == Injured::Stop::late || run_.count > mostCalls;
            if (run_.isLate) program_.kill();
            if (run_.isLate || stop == Injured::Stop::end) break;
        }
        run_.status = program_.status();
        return run_;
    }

private:
    void before() {
        const int mark = program_.call() == SYS_close ? static_cast<int>(program_.argument(0)) : 0;
        if (mark == programBegins) {
            hasBegun_ = true;
        } else if (mark == allocationFails) {
            run_.injuries.push_back({"allocation", ENOMEM, ""});
        } else if (hasBegun_) {
            count();
        }
    }

    void count() {
        const long number = program_.call();
        ++run_.count;
        run_.calls.insert(number);
        if (number == SYS_exit_group) {
            run_.openFiles = program_.openFiles();
            run_.mappedFiles = program_.mappedFiles();
        }
        if (isSpared()) return;
        for (std::size_t i = 0; i < faults_.size(); ++i) {
            const Fault& fault = faults_[i];
            if (fault.kind == Fault::Kind::call && fault.call == number && isDue(fault, ++met_[i]))
                injure(fault);
        }
    }

    /// Waking others never fails, though it is a call of the same number as waiting.
    bool isSpared() const {
        const int operation = static_cast<int>(program_.argument(1)) & FUTEX_CMD_MASK;
        return program_.call() == SYS_futex && operation != FUTEX_WAIT &&
               operation != FUTEX_WAIT_BITSET;
    }

    static bool isDue(const Fault& fault, long place) {
        const long times = !fault.isForEver ? 1 : fault.error == EINTR ? mostInterruptions : place;
        return place >= fault.place && place < fault.place + times;
    }

    void injure(const Fault& fault) {
        const SystemCall& call = *systemCall(fault.call);
        run_.injuries.push_back({call.name, fault.error, program_.target(call)});
        program_.fail(fault.error);
    }

    Injured program_;
    const std::vector<Fault>& faults_;
    /// How many of each fault's calls there were.
    std::vector<long> met_;
    bool hasBegun_ = false;
    Run run_;
};

std::optional<std::uint64_t> wordIn(const std::vector<standin::TraceRecord>& trace) {
    std::optional<std::uint64_t> word;
    for (const standin::TraceRecord& record : trace) {
        if (record.operation != "notify_get_state") continue;
        if (const auto* const number = std::get_if<std::int64_t>(&record.arguments[1])) {
            word = static_cast<std::uint64_t>(*number);
        } else if (const auto* const large = std::get_if<std::uint64_t>(&record.arguments[1])) {
            word = *large;
        }
    }
    return word;
}

}  // namespace

Laboratory::Laboratory(const Command& command, const fs::path& folder)
    : command_{command}, folder_{folder} {
    fs::create_directories(device());
    for (const Words& words : command_.preparation) runSoundly(words);
    fs::copy(device(), folder_ / "before", fs::copy_options::recursive);
    before_ = look();
    sound_ = run({});
    if (sound_.status != 0 || sound_.isLate) {
        throw std::runtime_error(command_.name + " fails without a fault: status " +
                                 std::to_string(sound_.status) + " " + sound_.errors);
    }
}

Start Laboratory::startOf(const Words& words, const std::string& name) const {
    Start how{.words = words,
              .environment = {"LD_PRELOAD=" QUILLET_HURRIED},
              .output = folder_ / (name + ".output"),
              .errors = folder_ / (name + ".errors")};
    const std::string trace = folder_ / (name + ".trace");
    how.words.insert(how.words.begin(), {"--root", root(), "--trace=" + trace});
    return how;
}

void Laboratory::runSoundly(const Words& words) const {
    const Start how = startOf(words, "preparation");
    if (waitFor(start(QUILLET_SPRINGBOARD, how)) != 0) {
        throw std::runtime_error(command_.name + " cannot be prepared: " + readText(how.errors));
    }
}

void Laboratory::renew() const {
    fs::remove_all(device());
    fs::copy(folder_ / "before", device(), fs::copy_options::recursive);
}

DeviceFiles Laboratory::look() const {
    DeviceFiles files;
    for (const auto& entry : fs::recursive_directory_iterator{device()}) {
        files.names.insert(entry.path().lexically_relative(device()));
    }
    files.choices = standin::readDictionary(root() / choicesPath);
    files.settings = standin::readDictionary(root() / settingsPath);
    files.hardware = standin::readDictionary(root() / hardwarePath);
    return files;
}

Run Laboratory::run(const std::vector<Fault>& faults) {
    renew();
    Start how = startOf(command_.words, "run");
    fs::remove(folder_ / "run.trace");
    for (const Fault& fault : faults) {
        if (fault.kind != Fault::Kind::allocation) continue;
        how.environment.push_back("QUILLET_STRESS_ALLOCATION=" + std::to_string(fault.place) +
                                  (fault.isForEver ? "+" : ""));
    }
    Run run = Watched{how, faults}.run();
    run.output = readText(how.output);
    run.errors = readText(how.errors);
    run.trace = readText(folder_ / "run.trace");
    run.device = look();
    return run;
}

Laboratory::Answer Laboratory::ask() const {
    const Start how = startOf({"state"}, "answer");
    Answer answer;
    answer.status = waitFor(start(QUILLET_SPRINGBOARD, how));
    answer.output = readText(how.output);
    answer.errors = readText(how.errors);
    answer.word = wordIn(readTrace(readText(folder_ / "answer.trace")));
    return answer;
}

}  // namespace quillet::test
