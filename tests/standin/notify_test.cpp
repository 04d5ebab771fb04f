// SPDX-License-Identifier: MIT
#include "platform/notify.h"

#include <gmock/gmock.h>

#include <climits>
#include <limits>
#include <set>
#include <string>
#include <vector>

#include "tests/standin/on_a_device.h"
#include "tests/support/no_room.h"

namespace quillet::test {
namespace {

using standin::NotificationTable;
using ::testing::ElementsAre;

constexpr int untouched = 77;

int tokenFor(const std::string& name) {
    int token = NOTIFY_TOKEN_INVALID;
    EXPECT_EQ(notify_register_check(name.c_str(), &token), NOTIFY_STATUS_OK) << name;
    return token;
}

int check(int token) {
    int posted = untouched;
    EXPECT_EQ(notify_check(token, &posted), NOTIFY_STATUS_OK);
    return posted;
}

std::uint64_t wordOf(int token) {
    std::uint64_t word = untouched;
    EXPECT_EQ(notify_get_state(token, &word), NOTIFY_STATUS_OK);
    return word;
}

void expectNoToken(int token) {
    int posted = untouched;
    std::uint64_t word = untouched;
    EXPECT_EQ(notify_check(token, &posted), NOTIFY_STATUS_INVALID_TOKEN) << token;
    EXPECT_EQ(notify_get_state(token, &word), NOTIFY_STATUS_INVALID_TOKEN) << token;
    EXPECT_EQ(notify_set_state(token, 1), NOTIFY_STATUS_INVALID_TOKEN) << token;
    EXPECT_EQ(notify_cancel(token), NOTIFY_STATUS_INVALID_TOKEN) << token;
    EXPECT_EQ(posted, untouched);
    EXPECT_EQ(word, std::uint64_t{untouched});
}

class Notify : public OnADevice {};

TEST_F(Notify, TheStatusCodesAreThoseOfNotify3) {
    EXPECT_EQ(NOTIFY_STATUS_OK, 0U);
    EXPECT_EQ(NOTIFY_STATUS_INVALID_NAME, 1U);
    EXPECT_EQ(NOTIFY_STATUS_INVALID_TOKEN, 2U);
    EXPECT_EQ(NOTIFY_STATUS_FAILED, 1000000U);
}

TEST_F(Notify, ARegistrationGivesATokenUntilItIsCancelled) {
    const int token = tokenFor("a.name");
    EXPECT_EQ(device().tokens.count(), 1U);
    EXPECT_EQ(notify_cancel(token), NOTIFY_STATUS_OK);
    EXPECT_EQ(device().tokens.count(), 0U);
}

TEST_F(Notify, NoRegistrationGivesTheInvalidToken) {
    EXPECT_NE(tokenFor("a.name"), NOTIFY_TOKEN_INVALID);
}

TEST_F(Notify, AnEmptyNameIsInvalid) {
    int token = untouched;
    EXPECT_EQ(notify_register_check("", &token), NOTIFY_STATUS_INVALID_NAME);
    EXPECT_EQ(token, untouched);
    EXPECT_EQ(device().tokens.count(), 0U);
}

TEST_F(Notify, ANameMayHaveItsGreatestLengthAndNoMore) {
    const std::string longest(NotificationTable::maxNameLength, 'n');
    notify_set_state(tokenFor(longest), 5);
    EXPECT_EQ(wordOf(tokenFor(longest)), 5U);

    int token = untouched;
    EXPECT_EQ(notify_register_check((longest + "n").c_str(), &token), NOTIFY_STATUS_INVALID_NAME);
    EXPECT_EQ(token, untouched);
}

TEST_F(Notify, TheFirstCheckOfATokenFindsSomethingWithoutAnyPost) {
    const int token = tokenFor("a.name");
    EXPECT_EQ(check(token), 1);
    EXPECT_EQ(check(token), 0);
    EXPECT_EQ(check(token), 0);
}

TEST_F(Notify, ACheckFindsThePostsSinceTheLastOneAsOne) {
    const int token = tokenFor("a.name");
    check(token);
    for (const int posts : {1, 3}) {
        for (int i = 0; i < posts; ++i) EXPECT_EQ(notify_post("a.name"), NOTIFY_STATUS_OK);
        EXPECT_EQ(check(token), 1) << posts;
        EXPECT_EQ(check(token), 0) << posts;
    }
}

TEST_F(Notify, APostBeforeTheRegistrationIsCoveredByTheFirstCheck) {
    tokenFor("a.name");
    notify_post("a.name");
    const int token = tokenFor("a.name");
    EXPECT_EQ(check(token), 1);
    EXPECT_EQ(check(token), 0);
}

TEST_F(Notify, EachTokenHasItsOwnCheck) {
    const int first = tokenFor("a.name");
    const int second = tokenFor("a.name");
    check(first);
    check(second);
    notify_post("a.name");
    EXPECT_EQ(check(first), 1);
    EXPECT_EQ(check(first), 0);
    EXPECT_EQ(check(second), 1);
}

TEST_F(Notify, PostsOfAnotherNameAreNotFound) {
    const int token = tokenFor("a.name");
    check(token);
    tokenFor("a.name.more");
    tokenFor("A.name");
    for (const char* const name : {"a.name.more", "A.name", "a.nam", ""}) {
        EXPECT_EQ(notify_post(name), NOTIFY_STATUS_OK) << name;
    }
    EXPECT_EQ(check(token), 0);
}

TEST_F(Notify, PostingANameThatNobodyKnowsAddsNone) {
    EXPECT_EQ(notify_post("nobody.knows"), NOTIFY_STATUS_OK);
    EXPECT_EQ(device().notifications.find("nobody.knows"), nullptr);
}

TEST_F(Notify, AWordThatNobodySetIsZero) { EXPECT_EQ(wordOf(tokenFor("a.name")), 0U); }

TEST_F(Notify, AWordHasAll64Bits) {
    const int token = tokenFor("a.name");
    for (const std::uint64_t word :
         {std::uint64_t{1}, std::uint64_t{1} << 32, std::uint64_t{1} << 63, 0x0123456789ABCDEFU,
          std::numeric_limits<std::uint64_t>::max(), std::uint64_t{0}}) {
        EXPECT_EQ(notify_set_state(token, word), NOTIFY_STATUS_OK) << word;
        EXPECT_EQ(wordOf(token), word);
    }
}

TEST_F(Notify, AWordOutlivesTheTokenThatWroteItAndIsSharedByAllOfItsName) {
    const int reader = tokenFor("a.name");
    const int writer = tokenFor("a.name");
    notify_set_state(writer, 42);
    notify_cancel(writer);
    EXPECT_EQ(wordOf(reader), 42U);
    EXPECT_EQ(wordOf(tokenFor("a.name")), 42U);
    EXPECT_EQ(wordOf(tokenFor("another.name")), 0U);
}

TEST_F(Notify, SettingAWordIsNoPostAndAPostSetsNoWord) {
    const int token = tokenFor("a.name");
    check(token);
    notify_set_state(token, 3);
    EXPECT_EQ(check(token), 0);
    notify_post("a.name");
    EXPECT_EQ(wordOf(token), 3U);
}

TEST_F(Notify, ACancelledTokenIsNoToken) {
    const int token = tokenFor("a.name");
    const int other = tokenFor("a.name");
    notify_set_state(other, 9);
    notify_cancel(token);
    expectNoToken(token);
    EXPECT_EQ(wordOf(other), 9U);
}

TEST_F(Notify, ANumberThatWasNeverGivenIsNoToken) {
    const int token = tokenFor("a.name");
    for (const int number : {NOTIFY_TOKEN_INVALID, token + 1, INT_MIN, INT_MAX}) {
        expectNoToken(number);
    }
}

TEST_F(Notify, NoNumberIsGivenTwice) {
    std::set<int> numbers;
    for (int i = 0; i < 100; ++i) {
        const int token = tokenFor("a.name");
        EXPECT_TRUE(numbers.insert(token).second) << token;
        if (i % 2 == 0) notify_cancel(token);
    }
}

TEST_F(Notify, ManyTokensAtOnceAreEachTheirOwn) {
    constexpr int count = 500;
    std::vector<int> tokens;
    for (int i = 0; i < count; ++i) {
        tokens.push_back(tokenFor("name." + std::to_string(i)));
        notify_set_state(tokens.back(), static_cast<std::uint64_t>(i));
        EXPECT_EQ(check(tokens.back()), 1) << i;
    }
    for (int i = 0; i < count; i += 2) notify_cancel(tokens[static_cast<std::size_t>(i)]);
    notify_post("name.7");
    EXPECT_EQ(device().tokens.count(), std::size_t{count} / 2);
    for (int i = 0; i < count; ++i) {
        const int token = tokens[static_cast<std::size_t>(i)];
        if (i % 2 == 0) {
            expectNoToken(token);
        } else {
            EXPECT_EQ(wordOf(token), static_cast<std::uint64_t>(i));
            EXPECT_EQ(check(token), i == 7 ? 1 : 0) << i;
        }
    }
}

TEST_F(Notify, ATokenLastsHoweverManyComeAndGo) {
    const int token = tokenFor("a.name");
    notify_set_state(token, 6);
    for (int i = 0; i < 1000; ++i) {
        const int other = tokenFor("another.name");
        ASSERT_EQ(wordOf(other), 0U) << i;
        notify_cancel(other);
        expectNoToken(other);
    }
    EXPECT_EQ(wordOf(token), 6U);
}

TEST_F(Notify, WithoutRoomNewNamesFailAndOldOnesGoOn) {
    tokenFor("a.name");
    int token = untouched;
    {
        const NoRoom noRoom;
        int names = 0;
        while (notify_register_check(std::to_string(names).c_str(), &token) == NOTIFY_STATUS_OK) {
            ASSERT_LT(++names, 100);
        }
        token = untouched;
        EXPECT_EQ(notify_register_check("one.too.many", &token), NOTIFY_STATUS_FAILED);
    }
    EXPECT_EQ(token, untouched);
    EXPECT_EQ(notify_post("one.too.many"), NOTIFY_STATUS_OK);

    const int old = tokenFor("a.name");
    notify_set_state(old, 1);
    EXPECT_EQ(wordOf(old), 1U);
}

TEST_F(Notify, AServiceThatRefusesGivesNoTokenButServesThoseItGave) {
    const int old = tokenFor("a.name");
    device().tokens.refuse(true);
    int token = untouched;
    std::string said;
    device().complaints = standin::Complaints{[&](const std::string& text) { said += text; }};
    EXPECT_EQ(notify_register_check("a.name", &token), NOTIFY_STATUS_FAILED);
    EXPECT_EQ(token, untouched);
    EXPECT_EQ(said,
              device().below("/var/run/notifications").string() + ": does not take \"a.name\"");
    EXPECT_EQ(notify_set_state(old, 1), NOTIFY_STATUS_OK);
    EXPECT_EQ(notify_cancel(old), NOTIFY_STATUS_OK);

    device().tokens.refuse(false);
    EXPECT_EQ(notify_cancel(tokenFor("a.name")), NOTIFY_STATUS_OK);
}

TEST_F(Notify, RecordsEveryCallWithWhatItLeftAndItsStatus) {
    const int token = tokenFor("a.name");
    check(token);
    notify_set_state(token, std::numeric_limits<std::uint64_t>::max());
    wordOf(token);
    notify_post("a.name");
    notify_cancel(token);
    EXPECT_THAT(calls(),
                ElementsAre(R"(notify_register_check("a.name", t1) = 0)", "notify_check(t1, 1) = 0",
                            "notify_set_state(t1, 18446744073709551615) = 0",
                            "notify_get_state(t1, 18446744073709551615) = 0",
                            R"(notify_post("a.name") = 0)", "notify_cancel(t1) = 0"));
}

TEST_F(Notify, RecordsNullForWhatACallDidNotLeave) {
    int out = untouched;
    std::uint64_t word = untouched;
    notify_register_check("", &out);
    notify_check(-1, &out);
    notify_get_state(-1, &word);
    notify_set_state(-1, 1);
    notify_cancel(-1);
    EXPECT_THAT(calls(), ElementsAre(R"(notify_register_check("", null) = 1)",
                                     "notify_check(-1, null) = 2", "notify_get_state(-1, null) = 2",
                                     "notify_set_state(-1, 1) = 2", "notify_cancel(-1) = 2"));
}

}  // namespace
}  // namespace quillet::test
