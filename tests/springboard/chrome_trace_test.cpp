// SPDX-License-Identifier: MIT
#include "springboard/chrome_trace.h"

#include <gmock/gmock.h>
#include <signal.h>

#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>

#include "tests/springboard/springboard.h"

namespace quillet::test {
namespace {

namespace fs = std::filesystem;
using ::testing::AnyOf;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;
using Event = nlohmann::json;

/// The events of a document that must be whole.
Event eventsIn(const std::string& document) {
    auto events = Event::parse(document, nullptr, false);
    EXPECT_TRUE(events.is_array()) << document;
    return events;
}

Words membersOf(const Event& event) {
    Words names;
    for (const auto& [name, value] : event.items()) names.push_back(name);
    return names;
}

/// Holds the events of a document against what viewers take: the trace-event format's array form.
class EventReader {
public:
    void take(const Event& event) {
        SCOPED_TRACE(event.dump());
        EXPECT_TRUE(event.at("pid").is_number_unsigned());
        EXPECT_TRUE(event.at("tid").is_number_unsigned());
        if (event.at("ph") == "M") {
            takeMetadata(event);
        } else {
            takeCall(event);
        }
    }

    /// Those that name tracks.
    Words metadata;
    /// In their order, as are the ends.
    Words begins;
    /// Calls that have not ended.
    Words open;

private:
    void takeMetadata(const Event& event) {
        EXPECT_THAT(begins, IsEmpty()) << "a track has its name before it begins";
        EXPECT_THAT(membersOf(event), UnorderedElementsAre("ph", "name", "pid", "tid", "args"));
        const Event text = *event.at("args").begin();
        EXPECT_TRUE(text.is_string() && !text.empty());
        metadata.push_back(event.at("name").get<std::string>() + ' ' +
                           membersOf(event.at("args")).front());
        track_ = {event.at("pid"), event.at("tid")};
    }

    void takeCall(const Event& event) {
        EXPECT_THAT(event.at("cat"), AnyOf("message", "function"));
        EXPECT_EQ(std::pair(event.at("pid"), event.at("tid")), track_) << "there is one track";
        ASSERT_TRUE(event.at("ts").is_number_unsigned()) << "microseconds";
        EXPECT_GE(event.at("ts"), last_);
        last_ = event.at("ts");
        const Words members = membersOf(event);
        if (event.at("ph") == "B") {
            EXPECT_THAT(members,
                        UnorderedElementsAre("ph", "name", "cat", "pid", "tid", "ts", "args"));
            begins.push_back(event.at("name"));
            open.push_back(event.at("name"));
            return;
        }
        EXPECT_EQ(event.at("ph"), "E");
        EXPECT_THAT(members, UnorderedElementsAre("ph", "name", "cat", "pid", "tid", "ts"));
        ASSERT_THAT(open, testing::Not(IsEmpty()));
        EXPECT_EQ(event.at("name"), open.back()) << "what began last ends first";
        open.pop_back();
    }

    std::pair<Event, Event> track_;
    Event last_ = 0;
};

/// What --trace-format=chrome writes.
class TraceForViewers : public SpringBoard {
protected:
    /// The switch vibrates by itself, and so waits.
    TraceForViewers() {
        write(preferencesPath, standin::Dictionary{{"ios-vibrate-pattern", false}});
    }

    fs::path trace() const { return folder() / "trace"; }
};

TEST_F(TraceForViewers, IsADocumentWithABeginAndAnEndOfEachCall) {
    const Outcome outcome = run({"--trace=-", "--trace-format=chrome", "flip", "off"});
    EXPECT_EQ(outcome.errors, "off\n") << "standard output is one document";
    EventReader reader;
    for (const Event& event : eventsIn(outcome.output)) reader.take(event);
    EXPECT_THAT(reader.metadata,
                ElementsAre("process_name name", "process_labels labels", "thread_name name"));
    EXPECT_THAT(reader.begins, Contains("<SBMediaController> setRingerMuted:"));
    EXPECT_THAT(reader.open, IsEmpty());
}

TEST_F(TraceForViewers, IsWholeHoweverTheProcessEnds) {
    const pid_t host =
        start(QUILLET_SPRINGBOARD, {.words = {"--root", root(), "--trace=" + trace().string(),
                                              "--trace-format=chrome", "flip", "off"},
                                    .output = folder() / "output",
                                    .errors = folder() / "errors"});
    EXPECT_TRUE(becomesTrue([&] {
        return fs::exists(trace()) && readText(trace()).find("runUntilDate:") != std::string::npos;
    }));
    kill(host, SIGKILL);
    EXPECT_EQ(waitFor(host), -SIGKILL);
    EventReader reader;
    for (const Event& event : eventsIn(readText(trace()))) reader.take(event);
    EXPECT_THAT(reader.open, ElementsAre("<NSRunLoop> runUntilDate:"));
}

TEST_F(TraceForViewers, NeverGoesBackInTimeHoweverItsTimesAreRounded) {
    ChromeTrace trace{{100, 12, "springboard", "iPod5,1", "media=deaf"}};
    EXPECT_THAT(trace.begin({0.0000026, "", "op", {}, {}, 0, true}), HasSubstr(R"("ts": 103,)"));
    EXPECT_THAT(trace.end({0.000001, "", "op", {}, {}, 0, true}, 0.000001),
                HasSubstr(R"("ts": 103})"));
    EXPECT_THAT(trace.begin({0.000004, "", "op", {}, {}}), HasSubstr(R"("ts": 104,)"));
}

}  // namespace
}  // namespace quillet::test
