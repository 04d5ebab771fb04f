// SPDX-License-Identifier: MIT
#include "platform/standin/device/trace.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "platform/flipswitch.h"
#include "platform/property_list.h"
#include "platform/run_loop.h"
#include "platform/standin/device/device.h"
#include "tests/standin/on_a_device.h"

namespace quillet::test {
namespace {

using standin::Answer;
using standin::toTrace;
using standin::TraceRecord;
using standin::TraceValue;

class TraceOfADevice : public OnADevice {};

TEST_F(TraceOfADevice, ObjectsStandAsTheirValueOrADescription) {
    const NSMutableDictionary dictionary = NSMutableDictionary::init();
    EXPECT_EQ(toTrace(dictionary), TraceValue{"<NSMutableDictionary: 0 entries>"});
    dictionary.setValue(NSNumber::numberWithBool(YES), "a");
    EXPECT_EQ(toTrace(dictionary), TraceValue{"<NSMutableDictionary: 1 entries>"});
    EXPECT_EQ(toTrace(NSString{"text"}), TraceValue{"text"});
    EXPECT_EQ(toTrace(NSNumber::numberWithBool(NO)), TraceValue{false});
    EXPECT_EQ(toTrace(NSNumber::numberWithFloat(0.5F)), TraceValue{0.5});
    EXPECT_EQ(toTrace(NSFileManager::defaultManager()), TraceValue{"<NSFileManager>"});
    EXPECT_EQ(toTrace(Object{}), TraceValue{});
}

TEST_F(TraceOfADevice, OtherPropertyListValuesStandAsTheirClass) {
    using standin::Value;
    const std::pair<Value, const char*> rows[] = {
        {standin::Array{}, "<NSArray>"},
        {standin::Data{"bytes"}, "<NSData>"},
        {standin::Date{}, "<NSDate>"},
        {standin::Dictionary{}, "<NSDictionary: 0 entries>"},
    };
    for (const auto& [value, description] : rows) {
        EXPECT_EQ(toTrace(standin::adopt<Object>(new standin::ValueInstance{value})),
                  TraceValue{description});
    }
    EXPECT_EQ(toTrace(standin::adopt<Object>(new standin::ValueInstance{Value{std::int64_t{-5}}})),
              TraceValue{std::int64_t{-5}});
}

TEST_F(TraceOfADevice, PointersAreNotShown) {
    EXPECT_EQ(toTrace(standin::Pointer{nullptr}), TraceValue{});
    EXPECT_EQ(toTrace(standin::Pointer{this}), TraceValue{"<pointer>"});
    EXPECT_EQ(toTrace(standin::ObjectAt{nullptr}), TraceValue{});
}

TEST_F(TraceOfADevice, EachRecordHasTheTimeOfItsCall) {
    std::vector<double> times;
    device().trace.setSink([&](const TraceRecord& record) { times.push_back(record.time); });
    device().trace.function("first");
    device().clock.advanceTo(0.75);
    device().trace.function("second", Answer{1});
    EXPECT_EQ(times, (std::vector{0.0, 0.75}));
}

/// Counts how often it is described.
struct Described : standin::Instance {
    std::string className() const override {
        ++times;
        return "NSDescribed";
    }
    mutable int times = 0;
};

TEST_F(TraceOfADevice, WithoutASinkNobodyIsAskedForADescription) {
    const Described instance;
    const auto send = [&] {
        device().trace.message(instance, "first:", instance);
        device().trace.message(standin::ClassOf{instance}, "second", Answer{instance});
    };
    device().trace.setSink(nullptr);
    send();
    EXPECT_EQ(instance.times, 0);
    device().trace.setSink([](const TraceRecord& /*record*/) {});
    send();
    EXPECT_EQ(instance.times, 4);
}

TEST_F(TraceOfADevice, ACallThatLastsHoldsWhatIsCalledMeanwhileAndTellsHowLongItTook) {
    std::vector<std::string> lines;
    device().trace.setSink(
        [&](const TraceRecord& record) {
            lines.push_back(std::to_string(record.depth) + record.operation +
                            (record.lasts ? "(" : ""));
        },
        [&](const TraceRecord& record, double duration) {
            lines.push_back(std::to_string(record.depth) + record.operation + ") " +
                            std::to_string(duration));
        });
    device().trace.function("before");
    {
        const auto outer = device().trace.lastingMessage("A", "outer");
        device().clock.advanceTo(0.25);
        const auto inner = device().trace.lastingMessage("A", "inner");
        device().trace.function("inside");
        device().clock.advanceTo(0.75);
    }
    device().trace.function("behind");
    EXPECT_EQ(lines, (std::vector<std::string>{"0before", "0outer(", "1inner(", "2inside",
                                               "1inner) 0.500000", "0outer) 0.750000", "0behind"}));
}

TEST_F(TraceOfADevice, TheBundlesWaitsLastAndARefreshLastsInThem) {
    std::vector<std::string> lines;
    device().trace.setSink([](const TraceRecord&) {},
                           [&](const TraceRecord& record, double duration) {
                               lines.push_back(record.operation + ' ' + std::to_string(duration));
                           });
    device().eventLoop.at(
        0.5, [] { FSSwitchPanel::sharedPanel().stateDidChangeForSwitchIdentifier("a"); });
    NSRunLoop::currentRunLoop().runUntilDate(NSDate::dateWithTimeIntervalSinceNow(2));
    NSThread::sleepForTimeInterval(0.25);
    EXPECT_EQ(lines, (std::vector<std::string>{"stateDidChangeForSwitchIdentifier: 0.000000",
                                               "runUntilDate: 2.000000",
                                               "sleepForTimeInterval: 0.250000"}));
}

TEST_F(TraceOfADevice, WithoutASinkNothingIsRecorded) {
    device().trace.function("seen");
    device().trace.setSink(nullptr);
    device().trace.function("not seen");
    const auto call = device().trace.lastingMessage("A", "not seen");
    EXPECT_EQ(calls(), Calls{"seen()"});
}

}  // namespace
}  // namespace quillet::test
