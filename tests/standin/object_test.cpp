// SPDX-License-Identifier: MIT
#include "platform/object.h"

#include <gmock/gmock.h>

#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/property_list.h"
#include "platform/run_loop.h"
#include "platform/springboard_classes.h"
#include "platform/standin/files/file.h"
#include "platform/standin/plist/property_list.h"
#include "platform/standin/plist/value.h"
#include "tests/standin/on_a_device.h"
#include "tests/support/phone.h"

namespace quillet::test {
namespace {

using standin::Instance;
using standin::Value;
using standin::ValueInstance;
using ::testing::ElementsAre;
using ::testing::ExitedWithCode;

Object objectOf(Value value) { return standin::adopt<Object>(new ValueInstance{std::move(value)}); }

/// Counts the instances that a test leaves behind, which must be none.
class References : public OnADevice {
protected:
    References() {
        // The loop comes into being at its first use, and stays.
        NSRunLoop::currentRunLoop();
        before_ = Instance::live();
    }
    int more() const { return Instance::live() - before_; }
    void TearDown() override { EXPECT_EQ(more(), 0); }

private:
    int before_ = 0;
};

TEST_F(References, AnObjectLivesAsLongAsAReferenceToIt) {
    auto first = std::make_unique<NSString>("text");
    EXPECT_EQ(more(), 1);
    auto second = std::make_unique<NSString>(*first);
    EXPECT_EQ(more(), 1) << "a copy is of the same object";
    EXPECT_EQ(first->instance(), second->instance());
    first.reset();
    EXPECT_EQ(more(), 1);
    EXPECT_EQ(standin::text(*second), "text");
    second.reset();
    EXPECT_EQ(more(), 0);
}

TEST_F(References, AssigningSharesTheNewObjectAndGivesUpTheOld) {
    NSString first = "first";
    const NSString second = "second";
    EXPECT_EQ(more(), 2);
    first = second;
    EXPECT_EQ(more(), 1);
    EXPECT_EQ(standin::text(first), "second");
}

TEST_F(References, AssigningAReferenceToItselfChangesNothing) {
    NSString string = "text";
    const NSString& same = string;
    string = same;
    EXPECT_EQ(more(), 1);
    EXPECT_EQ(standin::text(string), "text");
    const NSString other = string;
    string = other;
    EXPECT_EQ(more(), 1);
    EXPECT_EQ(standin::text(string), "text");
}

TEST_F(References, AssigningNilGivesTheObjectUp) {
    NSString string = "text";
    string = NSString{};
    EXPECT_EQ(more(), 0);
    EXPECT_FALSE(string);
    string = "again";
    EXPECT_EQ(more(), 1);
}

TEST_F(References, OneThatIsBorrowedCountsNothingNorDoItsCopies) {
    auto owner = std::make_unique<NSString>("text");
    NSString taken;
    {
        const NSString borrowed{Borrowed{}, owner->instance()};
        NSString copy = borrowed;
        taken = copy;
        copy = *owner;
        taken = borrowed;
    }
    EXPECT_EQ(more(), 1);
    taken = *owner;
    owner.reset();
    EXPECT_EQ(more(), 1) << "a copy of an owner owns";
    EXPECT_EQ(standin::text(taken), "text");
}

TEST_F(References, APlainPointerIsTheSameObjectAndMayBeSharedAgain) {
    NSString again;
    {
        const NSString string = "text";
        const CFStringRef pointer = string;
        EXPECT_EQ(pointer, string.instance());
        again = NSString{pointer};
        EXPECT_EQ(more(), 1);
    }
    EXPECT_EQ(more(), 1);
    EXPECT_EQ(standin::text(again), "text");
}

TEST_F(References, AStringCopiesItsCharacters) {
    char characters[] = "text";
    const NSString string = characters;
    characters[0] = 'n';
    EXPECT_EQ(standin::text(string), "text");
}

TEST_F(References, WhatADictionaryHandsOutOutlivesIt) {
    Object value;
    {
        const auto dictionary = NSMutableDictionary::init();
        dictionary.setObject(NSString{"text"}, "key");
        value = dictionary.objectForKey("key");
    }
    EXPECT_EQ(standin::text(value), "text");
    EXPECT_EQ(more(), 1);
}

TEST_F(References, ManyReferencesInOneContainerAreAllGivenUp) {
    std::vector<Object> references;
    for (int i = 0; i < 100; ++i) references.push_back(NSNumber::numberWithFloat(0.5F));
    references.insert(references.end(), 100, references.front());
    EXPECT_EQ(more(), 100);
    references.clear();
    EXPECT_EQ(more(), 0);
}

TEST_F(References, DatesAndHostClassesAreGivenUp) {
    SBRingerHUDController::classInHost().sharedInstance().activate(1);
    NSRunLoop::currentRunLoop().runUntilDate(NSDate::dateWithTimeIntervalSinceNow(0.5));
    EXPECT_EQ(more(), 0);
}

TEST(Flips, LeakNoObject) {
    Phone phone{{.machine = "iPod5,1"}};
    phone.write(preferencesPath, standin::Dictionary{{"ios-vibrate-pattern", false}});
    const auto flipBothWays = [&] {
        for (const int state : {0, 1, 2, -1}) phone.apply(state);
        phone.device().eventLoop.turn();
        phone.dataSource().titleForSwitchIdentifier(switchIdentifier);
        phone.state();
    };
    // The platform's shared objects come into being at their first use.
    flipBothWays();
    const int before = Instance::live();
    const std::size_t tokens = phone.device().tokens.count();
    for (int i = 0; i < 50; ++i) flipBothWays();
    EXPECT_EQ(Instance::live(), before);
    EXPECT_EQ(phone.device().tokens.count(), tokens);
}

TEST(Devices, LeaveNoObjectBehind) {
    { const Phone warmUp; }
    const int before = Instance::live();
    {
        Phone phone;
        phone.apply(0);
        phone.device().eventLoop.turn();
    }
    { const Phone phone; }
    const int after = Instance::live();
    {
        Phone phone;
        phone.apply(0);
        phone.device().eventLoop.turn();
    }
    EXPECT_EQ(Instance::live(), after);
    EXPECT_LE(before, after);
}

class Readings : public OnADevice {};

TEST_F(Readings, AnswerForFlagsNumbersAndStringsAndAreTraced) {
    EXPECT_EQ(objectOf(std::int64_t{2}).boolValue(), YES);
    EXPECT_EQ(objectOf(std::string{"no"}).boolValue(), NO);
    EXPECT_EQ(objectOf(std::string{"0.6x"}).floatValue(), 0.6F);
    EXPECT_EQ(NSNumber::numberWithFloat(0.1F).floatValue(), 0.1F);
    EXPECT_THAT(calls(),
                ElementsAre("<NSNumber> boolValue() = true", "<NSString> boolValue() = false",
                            "<NSString> floatValue() = 0.6", "NSNumber numberWithFloat:(0.1) = 0.1",
                            "<NSNumber> floatValue() = 0.1"));
}

TEST_F(Readings, AnythingButZeroMakesATrueFlag) {
    for (const BOOL flag : {BOOL{1}, BOOL{2}, BOOL{0x80}, BOOL{0xFF}}) {
        EXPECT_EQ(NSNumber::numberWithBool(flag).boolValue(), YES) << int{flag};
    }
    EXPECT_EQ(NSNumber::numberWithBool(NO).boolValue(), NO);
}

TEST_F(Readings, AStringOfOneCharacterIsATrueFlagForThirteenOfThem) {
    constexpr std::string_view flags = "YyTt123456789";
    for (int character = 0; character < 256; ++character) {
        const std::string text(1, static_cast<char>(character));
        const bool isTrue = flags.find(text) != flags.npos;
        EXPECT_EQ(objectOf(text).boolValue(), isTrue ? YES : NO) << character;
    }
}

TEST_F(Readings, OtherKindsOfAFileAreNamedWithItAndTheirKeys) {
    const std::pair<Value, const char*> rows[] = {
        {standin::Array{}, "an array"},     {standin::Data{"1"}, "data"},
        {standin::Date{1}, "a date"},       {standin::Dictionary{}, "a dictionary"},
        {standin::UID{1}, "an identifier"},
    };
    for (const auto& [value, kind] : rows) {
        standin::writeFileAtomically(
            device().below("/file.plist"),
            standin::writePropertyList(standin::Dictionary{{"a key", value}}));
        const auto file = NSDictionary::dictionaryWithContentsOfFile("/file.plist");
        EXPECT_EXIT(file.objectForKey("a key").boolValue(), ExitedWithCode(1),
                    std::string{": /file.plist: \"a key\" is "} + kind + ": <");
    }
}

TEST_F(Readings, OtherKindsEndTheProcessWithAMessage) {
    const std::pair<Object, const char*> rows[] = {
        {objectOf(standin::Array{}), "<NSArray>"},
        {objectOf(standin::Data{"1"}), "<NSData>"},
        {objectOf(standin::Date{1}), "<NSDate>"},
        {objectOf(standin::Dictionary{}), "<NSDictionary: 0 entries>"},
        {NSMutableDictionary::init(), "<NSMutableDictionary: 0 entries>"},
        {NSFileManager::defaultManager(), "<NSFileManager>"},
    };
    for (const auto& [object, description] : rows) {
        const std::string start = std::string{": "} + description + ": unrecognized selector ";
        EXPECT_EXIT(object.boolValue(), ExitedWithCode(1), start + "\"boolValue\"\n$");
        EXPECT_EXIT(object.floatValue(), ExitedWithCode(1), start + "\"floatValue\"\n$");
    }
}

TEST_F(Readings, WhatWasPrintedBeforeIsNotLostWithTheProcess) {
    const auto printed = folder() / "printed";
    const auto printAndRead = [&] {
        if (std::freopen(printed.c_str(), "w", stdout) == nullptr) return;
        std::printf("before");
        objectOf(standin::Array{}).boolValue();
    };
    EXPECT_EXIT(printAndRead(), ExitedWithCode(1), "unrecognized selector");
    EXPECT_EQ(std::filesystem::file_size(printed), 6U);
}

TEST_F(Readings, OrdinaryObjectsRespondToNoSelectorOfTheHosts) {
    EXPECT_EQ(NSString{"text"}.respondsToSelector("activate:"), NO);
    EXPECT_THAT(calls(), ElementsAre(R"(<NSString> respondsToSelector:("activate:") = false)"));
}

}  // namespace
}  // namespace quillet::test
