// SPDX-License-Identifier: MIT
#include "platform/notification_center.h"

#include <gmock/gmock.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "platform/notify.h"
#include "tests/standin/on_a_device.h"
#include "tests/support/no_room.h"

namespace quillet::test {
namespace {

using standin::NotificationTable;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// What an observer does when it is called.
using Work = std::function<void(CFStringRef name)>;

void callback(CFNotificationCenterRef, void* observer, CFStringRef name, const void*,
              CFDictionaryRef) {
    (*static_cast<Work*>(observer))(name);
}

void observe(const std::string& name, const Work& work) {
    CFNotificationCenterAddObserver(CFNotificationCenterGetDarwinNotifyCenter(), &work, callback,
                                    NSString{name.c_str()}, nullptr,
                                    CFNotificationSuspensionBehaviorCoalesce);
}

class Center : public OnADevice {
protected:
    /// An observer's work: to note `word`.
    Work noting(const std::string& word) {
        return [this, word](CFStringRef) { notes_.push_back(word); };
    }
    const std::vector<std::string>& notes() const { return notes_; }
    void turn() { device().eventLoop.turn(); }

private:
    std::vector<std::string> notes_;
};

TEST_F(Center, CallsAnObserverFromTheRunLoopAndNotInsideThePost) {
    const Work work = noting("called");
    observe("a.name", work);
    notify_post("a.name");
    EXPECT_THAT(notes(), IsEmpty());
    turn();
    EXPECT_THAT(notes(), ElementsAre("called"));
    turn();
    EXPECT_THAT(notes(), ElementsAre("called"));
}

TEST_F(Center, CallsAnObserverOnceForSeveralPosts) {
    const Work work = noting("called");
    observe("a.name", work);
    for (int i = 0; i < 3; ++i) notify_post("a.name");
    turn();
    EXPECT_THAT(notes(), ElementsAre("called"));
}

TEST_F(Center, CallsEveryObserverOfTheNameInTheOrderOfAdding) {
    const Work first = noting("first");
    const Work second = noting("second");
    observe("a.name", first);
    observe("a.name", second);
    notify_post("a.name");
    turn();
    EXPECT_THAT(notes(), ElementsAre("first", "second"));
}

TEST_F(Center, PostsOfOtherNamesCallNobody) {
    const Work work = noting("called");
    observe("a.name", work);
    const Work others = noting("other");
    observe("another.name", others);
    notify_post("another.name");
    notify_post("a.name.more");
    EXPECT_TRUE(device().observers.isPending());
    turn();
    EXPECT_THAT(notes(), ElementsAre("other"));
}

TEST_F(Center, APostBeforeTheObserverWasAddedDoesNotCallIt) {
    const Work first = noting("first");
    observe("a.name", first);
    notify_post("a.name");
    const Work second = noting("second");
    observe("a.name", second);
    turn();
    EXPECT_THAT(notes(), ElementsAre("first"));
}

struct Arguments {
    CFNotificationCenterRef center;
    void* observer;
    std::string name;
    const void* object;
    CFDictionaryRef userInfo;
};

TEST_F(Center, HandsTheObserverItsOwnArguments) {
    static std::vector<Arguments> received;
    received.clear();
    const auto receive = [](CFNotificationCenterRef center, void* observer, CFStringRef name,
                            const void* object, CFDictionaryRef userInfo) {
        received.push_back({center, observer, std::string{standin::text(name)}, object, userInfo});
    };
    const CFNotificationCenterRef center = CFNotificationCenterGetDarwinNotifyCenter();
    int observer = 0;
    const int object = 0;
    CFNotificationCenterAddObserver(center, &observer, receive, NSString{"a.name"}, &object,
                                    CFNotificationSuspensionBehaviorCoalesce);
    CFNotificationCenterAddObserver(center, nullptr, receive, NSString{"a.name"}, nullptr, 0);
    notify_post("a.name");
    turn();
    ASSERT_EQ(received.size(), 2U);
    EXPECT_EQ(received[0].center, center);
    EXPECT_EQ(received[0].observer, &observer);
    EXPECT_EQ(received[0].name, "a.name");
    EXPECT_EQ(received[0].object, &object);
    EXPECT_EQ(received[0].userInfo, nullptr);
    EXPECT_EQ(received[1].observer, nullptr);
    EXPECT_EQ(received[1].object, nullptr);
}

TEST_F(Center, TheNotificationServicesOwnPostsAndTheCentersAreTheSame) {
    const Work work = noting("called");
    observe("a.name", work);
    int token = NOTIFY_TOKEN_INVALID;
    int posted = 0;
    notify_register_check("a.name", &token);
    notify_check(token, &posted);

    CFNotificationCenterPostNotification(CFNotificationCenterGetDarwinNotifyCenter(),
                                         NSString{"a.name"}, nullptr, nullptr, 1);
    notify_check(token, &posted);
    EXPECT_EQ(posted, 1);
    turn();
    EXPECT_THAT(notes(), ElementsAre("called"));
}

TEST_F(Center, PostingANameThatNobodyKnowsAddsNone) {
    CFNotificationCenterPostNotification(CFNotificationCenterGetDarwinNotifyCenter(),
                                         NSString{"nobody.knows"}, nullptr, nullptr, 0);
    EXPECT_EQ(device().notifications.find("nobody.knows"), nullptr);
}

TEST_F(Center, AnObserverThatPostsItsOwnNameIsCalledAgainInTheNextTurn) {
    int calls = 0;
    const Work work = [&](CFStringRef) {
        if (++calls == 1) notify_post("a.name");
    };
    observe("a.name", work);
    notify_post("a.name");
    turn();
    EXPECT_EQ(calls, 1);
    turn();
    EXPECT_EQ(calls, 2);
    turn();
    EXPECT_EQ(calls, 2);
}

TEST_F(Center, AnObserverMayAddOthersWhichHearOfLaterPosts) {
    const std::vector<Work> added(20, noting("added"));
    bool isFirst = true;
    const Work work = [&](CFStringRef name) {
        noting("first")(name);
        if (!std::exchange(isFirst, false)) return;
        for (const Work& other : added) observe("a.name", other);
    };
    observe("a.name", work);
    notify_post("a.name");
    turn();
    EXPECT_THAT(notes(), ElementsAre("first"));
    notify_post("a.name");
    turn();
    EXPECT_EQ(notes().size(), 2 + added.size());
}

TEST_F(Center, ANameWithoutRoomOrTooLongIsNotObserved) {
    NotificationTable& table = device().notifications;
    const std::string longest(NotificationTable::maxNameLength, 'n');
    const Work work = noting("called");
    std::string said;
    device().complaints = standin::Complaints{[&](const std::string& text) { said += text; }};
    observe(longest + "n", work);
    EXPECT_EQ(table.find(longest), nullptr);
    EXPECT_EQ(said, device().below("/var/run/notifications").string() + ": does not take \"" +
                        longest + "n\"");

    const NoRoom noRoom;
    for (int i = 0; table.findOrAdd("name." + std::to_string(i)) != nullptr;) ++i;
    observe("one.too.many", work);
    notify_post("one.too.many");
    notify_post(longest.c_str());
    turn();
    EXPECT_THAT(notes(), IsEmpty());
}

TEST_F(Center, RecordsItsThreeOperations) {
    const Work work = noting("called");
    observe("a.name", work);
    const NSString object = "com.apple.springboard";
    CFNotificationCenterPostNotification(CFNotificationCenterGetDarwinNotifyCenter(),
                                         NSString{"a.name"}, object.instance(), nullptr, 1);
    const std::string get =
        R"(CFNotificationCenterGetDarwinNotifyCenter() = "<CFNotificationCenter>")";
    EXPECT_THAT(calls(),
                ElementsAre(get,
                            R"(CFNotificationCenterAddObserver("<CFNotificationCenter>", )"
                            R"("<pointer>", "<callback>", "a.name", null, 2))",
                            get,
                            R"(CFNotificationCenterPostNotification("<CFNotificationCenter>", )"
                            R"("a.name", "com.apple.springboard", null, true))"));
}

}  // namespace
}  // namespace quillet::test
