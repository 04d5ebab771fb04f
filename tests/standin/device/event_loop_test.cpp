// SPDX-License-Identifier: MIT
#include "platform/run_loop.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <limits>
#include <string>
#include <vector>

#include "platform/notify.h"
#include "tests/standin/on_a_device.h"
#include "tests/support/real_time.h"
#include "tests/support/supervisor.h"
#include "tests/support/traced.h"

namespace quillet::test {
namespace {

using standin::Clock;
using standin::EventLoop;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class Loop : public OnADevice {
protected:
    EventLoop& loop() { return device().eventLoop; }
    Clock& clock() { return device().clock; }
    /// Work that notes `word` and when it ran.
    EventLoop::Work noting(const std::string& word) {
        return [this, word] {
            notes_.push_back(word);
            times_.push_back(clock().now());
        };
    }
    const std::vector<std::string>& notes() const { return notes_; }
    const std::vector<double>& times() const { return times_; }

private:
    std::vector<std::string> notes_;
    std::vector<double> times_;
};

TEST_F(Loop, RunsWorkInTheOrderOfItsTimesEachAtItsTime) {
    loop().at(0.3, noting("third"));
    loop().at(0.1, noting("first"));
    loop().at(0.2, noting("second"));
    loop().runUntil(1);
    EXPECT_THAT(notes(), ElementsAre("first", "second", "third"));
    EXPECT_THAT(times(), ElementsAre(0.1, 0.2, 0.3));
    EXPECT_EQ(clock().now(), 1.0);
}

TEST_F(Loop, RunsWorkForTheSameTimeInTheOrderOfAdding) {
    for (const char* const word : {"a", "b", "c", "d"}) loop().at(0.5, noting(word));
    loop().runUntil(1);
    EXPECT_THAT(notes(), ElementsAre("a", "b", "c", "d"));
}

TEST_F(Loop, RunsWorkThatIsDueExactlyAtTheLimit) {
    loop().at(1, noting("at"));
    loop().runUntil(1);
    EXPECT_THAT(notes(), ElementsAre("at"));
}

TEST_F(Loop, LeavesWorkBeyondTheLimitForLater) {
    loop().at(1.5, noting("later"));
    loop().runUntil(1);
    EXPECT_THAT(notes(), IsEmpty());
    loop().runUntil(2);
    EXPECT_THAT(notes(), ElementsAre("later"));
    EXPECT_THAT(times(), ElementsAre(1.5));
}

TEST_F(Loop, RunsEachPieceOnce) {
    loop().at(0, noting("once"));
    loop().turn();
    loop().turn();
    loop().runUntil(1);
    EXPECT_THAT(notes(), ElementsAre("once"));
}

TEST_F(Loop, ALimitInThePastTurnsOnceAndTakesNoTime) {
    clock().advanceTo(5);
    loop().at(5, noting("due"));
    loop().at(5.5, noting("not due"));
    loop().runUntil(1);
    EXPECT_THAT(notes(), ElementsAre("due"));
    EXPECT_EQ(clock().now(), 5.0);
}

TEST_F(Loop, ATurnRunsWhatIsOverdueAndDoesNotWait) {
    loop().at(0.1, noting("overdue"));
    loop().at(9, noting("not due"));
    clock().advanceTo(3);
    loop().turn();
    EXPECT_THAT(notes(), ElementsAre("overdue"));
    EXPECT_EQ(clock().now(), 3.0);
}

TEST_F(Loop, WorkMayAddWork) {
    loop().at(0.2, [this] {
        noting("first")();
        loop().at(0.6, noting("third"));
        loop().at(0.4, noting("second"));
        loop().at(0.1, noting("overdue"));
    });
    loop().runUntil(1);
    EXPECT_THAT(notes(), ElementsAre("first", "overdue", "second", "third"));
    EXPECT_THAT(times(), ElementsAre(0.2, 0.2, 0.4, 0.6));
}

TEST_F(Loop, WorkMayRunTheLoopItself) {
    loop().at(0.1, [this] {
        noting("begins")();
        loop().runUntil(clock().now() + 0.5);
        noting("ends")();
    });
    loop().at(0.3, noting("inside"));
    loop().at(0.7, noting("after"));
    loop().runUntil(1);
    EXPECT_THAT(notes(), ElementsAre("begins", "inside", "ends", "after"));
    EXPECT_EQ(clock().now(), 1.0);
}

TEST_F(Loop, WhatRunsBeyondTheLimitMovesTheClockAndEndsTheOuterLoop) {
    loop().at(0.1, [this] { loop().runUntil(3); });
    loop().at(2, noting("inside"));
    loop().runUntil(1);
    EXPECT_THAT(notes(), ElementsAre("inside"));
    EXPECT_EQ(clock().now(), 3.0);
}

TEST_F(Loop, StoppingItEndsTheWaitAfterItsTurn) {
    loop().at(0.25, [this] { loop().stop(); });
    loop().at(0.25, noting("same turn"));
    loop().at(0.5, noting("later"));
    loop().runUntil(1);
    EXPECT_THAT(notes(), ElementsAre("same turn"));
    EXPECT_EQ(clock().now(), 0.25);
    loop().runUntil(1);
    EXPECT_THAT(notes(), ElementsAre("same turn", "later"));
}

// The inner wait is the bundle's, which must last as long as it asked for; the outer one is the
// host's, who stops it.
TEST_F(Loop, StoppingInsideAnInnerWaitEndsTheOuterOneWhenTheInnerHasHadItsTime) {
    loop().at(0.1, [this] {
        loop().runUntil(0.9);
        noting("inner ends")();
    });
    loop().at(0.5, [this] { loop().stop(); });
    loop().at(0.75, noting("inner goes on"));
    loop().at(0.95, noting("outer goes on"));
    loop().runUntil(1);
    EXPECT_THAT(notes(), ElementsAre("inner goes on", "inner ends"));
    EXPECT_EQ(clock().now(), 0.9);
}

TEST_F(Loop, StoppingItWhileItDoesNotRunChangesNothing) {
    loop().stop();
    loop().at(0.5, noting("in time"));
    loop().runUntil(1);
    EXPECT_THAT(notes(), ElementsAre("in time"));
    EXPECT_EQ(clock().now(), 1.0);
}

TEST_F(Loop, WorkThatAddsWorkForNowDoesNotHoldUpTheTurn) {
    int runs = 0;
    const EventLoop::Work again = [&] {
        ++runs;
        loop().at(0, again);
    };
    loop().at(0, again);
    loop().turn();
    EXPECT_EQ(runs, 1);
    loop().turn();
    EXPECT_EQ(runs, 2);
}

TEST_F(Loop, AnInnerWaitRunsWhatWasDueWithTheWorkThatWaits) {
    loop().at(0.1, [this] {
        loop().runUntil(0.6);
        noting("inner ends")();
    });
    loop().at(0.1, noting("due too"));
    loop().runUntil(1);
    EXPECT_THAT(notes(), ElementsAre("due too", "inner ends"));
    EXPECT_THAT(times(), ElementsAre(0.1, 0.6));
}

TEST_F(Loop, AWaitWithoutLimitLooksForTheTableEveryTwelfthTime) {
    for (int time = 1; time <= 48; ++time) loop().at(time, [] {});
    const auto calls =
        systemCallsOf([this] { loop().runUntil(std::numeric_limits<double>::infinity()); });
    EXPECT_EQ(std::ranges::count_if(calls, isStat), 2 * 4) << "of its file, and of its place";
}

TEST_F(Loop, VirtualTimeTakesNoRealTime) {
    const double start = realNow();
    loop().at(86400, noting("tomorrow"));
    loop().runUntil(2 * 86400.0);
    EXPECT_THAT(notes(), ElementsAre("tomorrow"));
    EXPECT_LT(realNow() - start, 10);
}

TEST_F(Loop, TellsObserversOfAPostThatWorkMakesAtThatTime) {
    device().observers.add("a.name", noting("observer"));
    loop().at(0.25, [] { notify_post("a.name"); });
    loop().runUntil(1);
    EXPECT_THAT(notes(), ElementsAre("observer"));
    EXPECT_THAT(times(), ElementsAre(0.25));
}

TEST_F(Loop, TellsObserversOfAnEarlierPostBeforeItWaits) {
    device().observers.add("a.name", noting("observer"));
    notify_post("a.name");
    loop().runUntil(1);
    EXPECT_THAT(times(), ElementsAre(0.0));
}

TEST_F(Loop, ServesAPostThatAnObserverMakesAtThatTime) {
    // The first observer comes first, so the turn has passed it by when the second one posts.
    device().observers.add("a.name", noting("first"));
    device().observers.add("another.name", [] { notify_post("a.name"); });
    loop().at(0.25, [] { notify_post("another.name"); });
    loop().runUntil(1);
    EXPECT_THAT(times(), ElementsAre(0.25));
}

TEST_F(Loop, AnObserverThatACallbackAddsHearsOfLaterPostsOnly) {
    device().observers.add("a.name", [this] {
        if (device().observers.count() == 1) device().observers.add("a.name", noting("added"));
    });
    notify_post("a.name");
    loop().turn();
    EXPECT_THAT(notes(), ElementsAre());
    notify_post("a.name");
    loop().turn();
    EXPECT_THAT(notes(), ElementsAre("added"));
}

TEST_F(Loop, AnObserverThatACallbackAddsHearsOfAPostAtOnceInTheNextTurn) {
    device().observers.add("a.name", [this] {
        device().observers.add("another.name", noting("added"));
        notify_post("another.name");
    });
    notify_post("a.name");
    loop().turn();
    EXPECT_THAT(notes(), IsEmpty());
    loop().turn();
    EXPECT_THAT(notes(), ElementsAre("added"));
}

TEST_F(Loop, RunUntilDateRunsUntilTheDateAndRecordsIt) {
    clock().advanceTo(2);
    loop().at(2.25, noting("inside"));
    NSRunLoop::currentRunLoop().runUntilDate(NSDate::dateWithTimeIntervalSinceNow(0.5));
    EXPECT_EQ(clock().now(), 2.5);
    EXPECT_THAT(notes(), ElementsAre("inside"));
    EXPECT_THAT(calls(), ElementsAre(R"(NSRunLoop currentRunLoop() = "<NSRunLoop>")",
                                     "NSDate dateWithTimeIntervalSinceNow:(0.5) = 2.5",
                                     "<NSRunLoop> runUntilDate:(2.5)"));
}

TEST_F(Loop, RunUntilADateThatIsPastOrNilTurnsOnce) {
    clock().advanceTo(2);
    loop().at(2, noting("first"));
    NSRunLoop::currentRunLoop().runUntilDate(NSDate::dateWithTimeIntervalSinceNow(-1));
    EXPECT_THAT(notes(), ElementsAre("first"));
    loop().at(2, noting("second"));
    NSRunLoop::currentRunLoop().runUntilDate(NSDate{});
    EXPECT_THAT(notes(), ElementsAre("first", "second"));
    EXPECT_EQ(clock().now(), 2.0);
}

TEST_F(Loop, ASleepTakesItsTimeAndRunsNothing) {
    loop().at(0.1, noting("due"));
    NSThread::sleepForTimeInterval(0.25);
    EXPECT_THAT(notes(), IsEmpty());
    EXPECT_EQ(clock().now(), 0.25);
    EXPECT_THAT(calls(), ElementsAre("NSThread sleepForTimeInterval:(0.25)"));
}

}  // namespace
}  // namespace quillet::test
