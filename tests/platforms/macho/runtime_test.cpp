// SPDX-License-Identifier: MIT
#include "tests/platforms/macho/loader/runtime.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <type_traits>
#include <vector>

#include "platform/property_list.h"
#include "platform/springboard_classes.h"
#include "platform/standin/device/device.h"
#include "platform/standin/runtime/instances.h"
#include "tests/platforms/macho/loader/imports.h"
#include "tests/support/machine.h"

namespace quillet::macho {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;

/// As wide as a register of the processor.
using Real = std::conditional_t<sizeof(void*) == 8, double, float>;

/// What `echo` was given last.
std::vector<long> integers;
std::vector<Real> reals;

double echo(Id /*self*/, Selector /*selector*/, long a, long b, long c, long d, Real e, Real f,
            Real g, Real h, Real i, Real j, Real k, Real l) {
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
                         .protocols = {},
                         .classMethods = {},
                         .instanceMethods = {{"echo", "", addressOfEcho()}},
                         .fields = {},
                         .properties = {}}};
    const void* instance_ = &classObject_;
};

TEST_F(Echo, ReceivesEveryArgument) {
    EXPECT_EQ(sendMessage<double>(&instance_, "echo", 1L, 2L, 3L, 4L, Real{1.5}, Real{2.5},
                                  Real{3.5}, Real{4.5}, Real{5.5}, Real{6.5}, Real{7.5}, Real{8.5}),
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

/// A function of the runtime's library as a module gets it.
template <class Function>
Function* runtimeFunction(const char* symbol) {
    return reinterpret_cast<Function*>(
        const_cast<void*>(findImport("/usr/lib/libobjc.A.dylib", symbol)));
}

/// A class of the host that answers "activate:", as its instance does not.
class HostClass : public ::testing::Test {
protected:
    using GetClass = Id(Id);
    using RespondsToSelector = int(Id, Selector);

    test::Machine machine_;
    SBRingerHUDController cls_ = SBRingerHUDController::classInHost();
    GetClass* const getClass_ = runtimeFunction<GetClass>("_object_getClass");
    RespondsToSelector* const responds_ =
        runtimeFunction<RespondsToSelector>("_class_respondsToSelector");
};

TEST_F(HostClass, OfAnObjectSaysWhatTheObjectAnswers) {
    const SBRingerHUDController instance = cls_.sharedInstance();
    const Id ofClass = getClass_(cls_.instance());
    const Id ofInstance = getClass_(instance.instance());
    EXPECT_EQ(responds_(ofClass, "activate:"), 1);
    EXPECT_EQ(responds_(ofInstance, "activate:"), 0);
    EXPECT_EQ(responds_(getClass_(nullptr), "activate:"), 0);
}

TEST_F(HostClass, IsNotTheObjectItself) {
    const SBRingerHUDController instance = cls_.sharedInstance();
    EXPECT_DEATH(responds_(instance.instance(), "activate:"),
                 "class_respondsToSelector: not the class of an object");
}

TEST(Nil, AnswersZeroInEveryKindOfRegister) {
    EXPECT_EQ(sendMessage<long>(nullptr, "anything", 1L, 2L), 0);
    EXPECT_EQ(sendMessage<double>(nullptr, "anything", Real{1.5}, Real{2.5}), 0.0);
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
