// SPDX-License-Identifier: MIT
#include "tests/platforms/macho/loader/runtime.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

#include "platform/property_list.h"
#include "platform/standin/runtime/instances.h"

namespace quillet::macho {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;

/// What `echo` was given last.
std::vector<long> integers;
std::vector<double> reals;

double echo(Id /*self*/, Selector /*selector*/, long a, long b, long c, long d, double e, double f,
            double g, double h, double i, double j, double k, double l) {
    integers = {a, b, c, d};
    reals = {e, f, g, h, i, j, k, l};
    return 0.5;
}

const void* addressOfEcho() { return reinterpret_cast<const void*>(&echo); }

/// A class as a module would have it, with one message.
class Echo : public ::testing::Test {
protected:
    const void* classObject_[5] = {};
    LoadedClass loaded_{{.name = "Echo",
                         .address = &classObject_,
                         .superclass = platformClass("NSObject"),
                         .instanceStart = sizeof(void*),
                         .instanceSize = sizeof(void*),
                         .hasLoad = false,
                         .classMethods = {},
                         .instanceMethods = {{"echo", "", addressOfEcho()}},
                         .fields = {},
                         .properties = {}}};
    const void* instance_ = &classObject_;
};

TEST_F(Echo, ReceivesEveryArgumentThatStandsInARegister) {
    EXPECT_EQ(sendMessage<double>(&instance_, "echo", 1L, 2L, 3L, 4L, 1.5, 2.5, 3.5, 4.5, 5.5, 6.5,
                                  7.5, 8.5),
              0.5);
    EXPECT_THAT(integers, ElementsAre(1, 2, 3, 4));
    EXPECT_THAT(reals, ElementsAre(1.5, 2.5, 3.5, 4.5, 5.5, 6.5, 7.5, 8.5));
}

TEST_F(Echo, IsNotAnsweredByItsClass) {
    EXPECT_DEATH(sendMessage<void>(&classObject_, "echo"), "unknown message: \\+\\[Echo echo\\]");
}

TEST_F(Echo, IsItsOwnClassWhenAskedForIt) {
    EXPECT_EQ(sendMessage<Id>(&classObject_, "class"), &classObject_);
}

TEST(Nil, AnswersZeroInEveryKindOfRegister) {
    EXPECT_EQ(sendMessage<long>(nullptr, "anything", 1L, 2L), 0);
    EXPECT_EQ(sendMessage<double>(nullptr, "anything", 1.5, 2.5), 0.0);
    EXPECT_EQ(sendMessage<float>(nullptr, "anything", 1.5F, 2.5F), 0.0F);
}

TEST(Pool, ReleasesAtItsEndWhatNobodyRetained) {
    const int live = standin::Instance::live();
    {
        const Pool outer;
        autoreleased(NSString("outer"));
        {
            const Pool inner;
            autoreleased(NSString("inner"));
            EXPECT_EQ(standin::Instance::live(), live + 2);
        }
        EXPECT_EQ(standin::Instance::live(), live + 1);
    }
    EXPECT_EQ(standin::Instance::live(), live);
}

TEST(Pool, LeavesWhatWasRetainedToItsUser) {
    const int live = standin::Instance::live();
    Id string = nullptr;
    {
        const Pool pool;
        string = retain(autoreleased(NSString("kept")));
    }
    EXPECT_EQ(standin::text(string), "kept");
    release(string);
    EXPECT_EQ(standin::Instance::live(), live);
}

}  // namespace
}  // namespace quillet::macho
