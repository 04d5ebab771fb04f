// SPDX-License-Identifier: MIT
//
// Loaded into a program that is put under stress (LD_PRELOAD). Its time goes faster: the monotonic
// clock and whatever is waited for by it, so that a flip's second of waiting takes some
// milliseconds; nothing else is changed by that. And one allocation fails, or all from it on: the
// one that $QUILLET_STRESS_ALLOCATION numbers, with a "+" behind the number for all.
//
// The tracer is told by closing what is no file: when the program begins, and when an allocation
// fails.

#include <dlfcn.h>
#include <errno.h>
#include <linux/futex.h>
#include <poll.h>
#include <signal.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

#include <cstdarg>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "tests/stress/marks.h"

extern "C" {
void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* memory, size_t size);
void* __libc_memalign(size_t alignment, size_t size);
}

namespace {

using quillet::test::allocationFails;
using quillet::test::programBegins;

constexpr std::int64_t timesFaster = 50;
constexpr std::int64_t perSecond = 1'000'000'000;

/// The function that this library stands in front of.
template <class Function>
Function* behind(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

const auto realClock = behind<int(clockid_t, timespec*)>("clock_gettime");
const auto realSleep = behind<int(const timespec*, timespec*)>("nanosleep");
const auto realClockSleep =
    behind<int(clockid_t, int, const timespec*, timespec*)>("clock_nanosleep");
const auto realPoll = behind<int(pollfd*, nfds_t, int)>("poll");
const auto realWaitForPoll =
    behind<int(pollfd*, nfds_t, const timespec*, const sigset_t*)>("ppoll");
const auto realWaitForSignal =
    behind<int(const sigset_t*, siginfo_t*, const timespec*)>("sigtimedwait");
const auto realSystemCall = behind<long(long, ...)>("syscall");

std::int64_t spanOf(const timespec& time) { return time.tv_sec * perSecond + time.tv_nsec; }

timespec timeOf(std::int64_t span) { return {span / perSecond, span % perSecond}; }

std::int64_t monotonicNow() {
    timespec now = {};
    realClock(CLOCK_MONOTONIC, &now);
    return spanOf(now);
}

const std::int64_t start = monotonicNow();

/// Rounded up: nobody wakes before the time that was asked for.
timespec shortened(const timespec& span) {
    return timeOf((spanOf(span) + timesFaster - 1) / timesFaster);
}

/// The same for a span that may be left out, put into `place`.
const timespec* shortened(const timespec* span, timespec& place) {
    if (span == nullptr) return nullptr;
    place = shortened(*span);
    return &place;
}

bool hasBegun = false;
bool failsForEver = false;
std::int64_t allocationsLeft = 0;

/// Whether the allocation that is asked for fails.
bool fails() {
    if (!hasBegun || allocationsLeft == 0) return false;
    const bool isFailing = allocationsLeft == 1;
    if (isFailing && !failsForEver) allocationsLeft = 0;
    if (!isFailing) --allocationsLeft;
    if (!isFailing) return false;
    realSystemCall(SYS_close, allocationFails);
    errno = ENOMEM;
    return true;
}

using Main = int(int, char**, char**);

Main* realMain = nullptr;

/// The program's main. What runs before it finds memory as it is.
int begin(int count, char** words, char** environment) {
    if (const char* const wanted = std::getenv("QUILLET_STRESS_ALLOCATION")) {
        allocationsLeft = std::strtoll(wanted, nullptr, 10);
        failsForEver = std::strchr(wanted, '+') != nullptr;
    }
    realSystemCall(SYS_close, programBegins);
    hasBegun = true;
    return realMain(count, words, environment);
}

}  // namespace

extern "C" {

/// What the program's first instructions call, to have its main called.
int __libc_start_main(Main* main, int count, char** words, void (*first)(), void (*last)(),
                      void (*ending)(), void* stack) {
    using Start = int(Main*, int, char**, void (*)(), void (*)(), void (*)(), void*);
    realMain = main;
    const auto realStart = behind<Start>("__libc_start_main");
    return realStart(begin, count, words, first, last, ending, stack);
}

int clock_gettime(clockid_t clock, timespec* time) noexcept {
    const int status = realClock(clock, time);
    if (status != 0 || clock != CLOCK_MONOTONIC) return status;
    *time = timeOf(start + (spanOf(*time) - start) * timesFaster);
    return 0;
}

int nanosleep(const timespec* span, timespec* left) {
    const timespec rest = shortened(*span);
    return realSleep(&rest, left);
}

int clock_nanosleep(clockid_t clock, int flags, const timespec* time, timespec* left) {
    if (clock != CLOCK_MONOTONIC) return realClockSleep(clock, flags, time, left);
    const bool isSpan = (flags & TIMER_ABSTIME) == 0;
    const timespec rest =
        isSpan ? shortened(*time) : timeOf(start + (spanOf(*time) - start) / timesFaster + 1);
    return realClockSleep(clock, flags, &rest, left);
}

int poll(pollfd* files, nfds_t count, int milliseconds) {
    const int rest = milliseconds > 0 ? 1 + milliseconds / int{timesFaster} : milliseconds;
    return realPoll(files, count, rest);
}

int ppoll(pollfd* files, nfds_t count, const timespec* span, const sigset_t* signals) {
    timespec rest;
    return realWaitForPoll(files, count, shortened(span, rest), signals);
}

int sigtimedwait(const sigset_t* signals, siginfo_t* found, const timespec* span) {
    timespec rest;
    return realWaitForSignal(signals, found, shortened(span, rest));
}

/// The wait on a futex has no other function in the C library.
long syscall(long number, ...) noexcept {
    std::va_list list;
    va_start(list, number);
    long arguments[6];
    for (long& argument : arguments) argument = va_arg(list, long);
    va_end(list);
    timespec rest;
    const bool waits = number == SYS_futex && (arguments[1] & FUTEX_CMD_MASK) == FUTEX_WAIT;
    if (waits) {
        const auto* const span = reinterpret_cast<const timespec*>(arguments[3]);
        arguments[3] = reinterpret_cast<long>(shortened(span, rest));
    }
    return realSystemCall(number, arguments[0], arguments[1], arguments[2], arguments[3],
                          arguments[4], arguments[5]);
}

void* malloc(size_t size) { return fails() ? nullptr : __libc_malloc(size); }

void* calloc(size_t count, size_t size) { return fails() ? nullptr : __libc_calloc(count, size); }

void* realloc(void* memory, size_t size) {
    return fails() ? nullptr : __libc_realloc(memory, size);
}

void* aligned_alloc(size_t alignment, size_t size) {
    return fails() ? nullptr : __libc_memalign(alignment, size);
}

int posix_memalign(void** memory, size_t alignment, size_t size) {
    if (fails()) return ENOMEM;
    *memory = __libc_memalign(alignment, size);
    return *memory == nullptr ? ENOMEM : 0;
}

}  // extern "C"
