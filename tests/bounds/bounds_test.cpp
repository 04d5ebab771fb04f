// SPDX-License-Identifier: MIT
//
// Whatever the bytes are: the memory and the time that they take are in proportion to their number,
// and the stack does not depend on them.
#include <gtest/gtest.h>
#include <pthread.h>
#include <time.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/standin/plist/property_list.h"
#include "tests/bounds/counted_memory.h"
#include "tests/bounds/hostile_shapes.h"
#include "tests/support/values.h"

namespace quillet::standin {
namespace {

/// The processor's time that this thread has taken, in seconds.
double now() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

/// Reads and writes again, as a flip does, and then in the other form.
void rewrite(std::string bytes) {
    const auto value = readPropertyList(std::move(bytes));
    if (!value) return;
    rewritePropertyList(*value, Form::xml);
    rewritePropertyList(*value, Form::binary);
}

class Bounds : public testing::TestWithParam<std::size_t> {};

TEST_P(Bounds, ReadingAndWritingAgainTakesMemoryAndTimeInProportionToTheSize) {
    // An optimised build takes a small part of the time; the rest is for checks and sanitizers.
    constexpr double slowness = 50;
    for (const auto& [name, bytes] : hostileShapes(GetParam())) {
        const test::CountedMemory memory;
        const double start = now();
        rewrite(bytes);
        EXPECT_LE(memory.peak(), 64 * bytes.size() + (std::size_t{4} << 20U)) << name;
        EXPECT_LE(now() - start, slowness * (0.01 + 200e-9 * static_cast<double>(bytes.size())))
            << name;
    }
}

INSTANTIATE_TEST_SUITE_P(AtEverySize, Bounds,
                         testing::Values(std::size_t{10000}, std::size_t{100000},
                                         std::size_t{1000000}),
                         testing::PrintToStringParamName());

TEST(Limits, WhatWouldTakeTooMuchToWriteOrTooLongToReadIsRefused) {
    std::size_t found = 0;
    for (const auto& [name, bytes] : hostileShapes(600000)) {
        if (name == "deep flags") {
            ++found;
            const auto value = readPropertyList(bytes);
            ASSERT_TRUE(value);
            EXPECT_EQ(rewritePropertyList(*value), std::nullopt);
            // Nothing in that form grows with the depth.
            EXPECT_TRUE(rewritePropertyList(*value, Form::binary));
        }
        if (name.starts_with("many numbers for") || name.starts_with("duplicate keys in one")) {
            ++found;
            EXPECT_EQ(readPropertyList(bytes), std::nullopt) << name;
        }
    }
    EXPECT_EQ(found, std::size_t{6});
}

TEST(Limits, SmallFilesMayShareAndNestAsTheyLike) {
    for (const auto& [name, bytes] : hostileShapes(10000)) {
        if (!name.starts_with("many numbers for")) continue;
        EXPECT_TRUE(readPropertyList(bytes)) << name;
    }
    std::string nested = "<true/>";
    for (int i = 0; i < 500; ++i) {
        nested = "<dict><key>b</key><true/><key>a</key>" + nested + "<key>b</key><false/></dict>";
    }
    const auto value = readPropertyList(nested);
    ASSERT_TRUE(value);
    EXPECT_EQ(std::get<Dictionary>(*value).find("b"), Value{false});
}

TEST(Limits, WhatIsAddedToAValueCountsForIt) {
    Dictionary dictionary;
    dictionary.set("data", Data{std::string(8000000, 'a')});
    EXPECT_TRUE(rewritePropertyList(dictionary));
    auto read = readPropertyList("<dict/>");
    ASSERT_TRUE(read);
    std::get<Dictionary>(*read).set("data", Data{std::string(8000000, 'a')});
    EXPECT_TRUE(rewritePropertyList(*read));
}

/// Runs `work` on a stack of its own. Returns how many bytes of that were touched.
std::size_t stackTakenBy(const std::function<void()>& work) {
    constexpr std::size_t size = std::size_t{8} << 20U;
    constexpr char untouched = '\x5A';
    std::string stack(size, untouched);
    pthread_attr_t attributes{};
    pthread_attr_init(&attributes);
    pthread_attr_setstack(&attributes, stack.data(), stack.size());
    pthread_t thread{};
    const auto run = [](void* function) -> void* {
        (*static_cast<const std::function<void()>*>(function))();
        return nullptr;
    };
    auto* const argument = const_cast<std::function<void()>*>(&work);
    const int error = pthread_create(&thread, &attributes, run, argument);
    pthread_attr_destroy(&attributes);
    if (error != 0) return size;
    pthread_join(thread, nullptr);
    return size - std::min(stack.find_first_not_of(untouched), size);
}

void readCopyChangeCompareAndDestroy(const std::string& bytes) {
    const auto value = readPropertyList(bytes);
    if (!value) return;
    auto copy = value;
    EXPECT_EQ(copy, value);
    if (auto* const dictionary = std::get_if<Dictionary>(&*copy)) dictionary->set("new", *value);
    EXPECT_EQ(readPropertyList(bytes).has_value(), value.has_value());
    rewritePropertyList(*copy);
    rewritePropertyList(*copy, Form::binary);
}

TEST(Limits, TheStackIs128KilobytesAtMost) {
    const std::size_t thread = stackTakenBy([] {});
    std::string deep;
    for (int i = 0; i < maxDepth; ++i) deep += "<dict><key>k</key>";
    auto shapes = hostileShapes(20000);
    shapes.push_back({"nested dictionaries", deep.substr(0, deep.size() - 12) + "</dict>"});
    for (int i = 1; i < maxDepth; ++i) shapes.back().bytes += "</dict>";
    ASSERT_TRUE(readPropertyList(shapes.back().bytes));
    for (const auto& shape : shapes) {
        const auto taken = stackTakenBy([&] { readCopyChangeCompareAndDestroy(shape.bytes); });
        EXPECT_LE(taken - thread, std::size_t{128} << 10U) << shape.name;
    }
}

TEST(Limits, AValueThatIsWrappedAgainAndAgainTakesNoMoreStack) {
    const std::size_t thread = stackTakenBy([] {});
    const auto taken = stackTakenBy([] {
        Value value = Array{};
        for (int i = 0; i < 2000; ++i) value = Array{std::vector<Value>{value}};
        const Value copy = value;
        EXPECT_EQ(copy, value);
        EXPECT_NE(copy, (Array{std::vector<Value>{value}}));
        EXPECT_FALSE(writePropertyList(value).empty());
        EXPECT_FALSE(writePropertyList(value, Form::binary).empty());
    });
    EXPECT_LE(taken - thread, std::size_t{128} << 10U);
}

}  // namespace
}  // namespace quillet::standin
