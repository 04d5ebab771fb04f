// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>
#include <sys/syscall.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <string>

#include "platform/property_list.h"
#include "tests/support/phone.h"
#include "tests/support/supervisor.h"

namespace quillet::test {
namespace {

using standin::Dictionary;

struct Error {
    const char* name;
    int number;
};

/// An iPod whose preferences file is there, and which system calls that name it do not reach.
class UnlookedFile : public testing::TestWithParam<Error> {
protected:
    UnlookedFile() { phone_.write(preferencesPath, choices); }

    Phone& phone() { return phone_; }

    /// Whether the call asks about the file by its path.
    bool isLook(const SupervisedCall& call) {
        const std::string file = phone_.device().below(preferencesPath);
        return isStat(call.number) && std::ranges::count(call.paths(), file) == 1;
    }

    /// Runs `body` while each call of which `isMeant` is true fails.
    template <class Meant>
    int underErrors(const std::function<int()>& body, Meant isMeant) {
        int failed = 0;
        const int answer = supervise(callsThatLook(), body, [&](const SupervisedCall& call) {
            if (!isMeant(call)) return Verdict{};
            ++failed;
            return Verdict{Verdict::Kind::fails, GetParam().number};
        });
        EXPECT_GT(failed, 0) << "the error was met";
        return answer;
    }

    int turnOff() {
        phone_.exported<void()>("turnRingerVolumeOff")();
        return 0;
    }

    const Dictionary choices = {{"ios-vibrate-pattern", false}, {"vibrate-when-on", true}};

private:
    Phone phone_{{.machine = "iPod5,1"}};
};

TEST_P(UnlookedFile, CountsAsThere) {
    const auto look = [] {
        return NSFileManager::defaultManager().fileExistsAtPath(preferencesPath);
    };
    EXPECT_EQ(underErrors(look, [this](const SupervisedCall& call) { return isLook(call); }), YES);
}

TEST_P(UnlookedFile, KeepsWhatItHoldsWhenTheVolumeIsPutIntoIt) {
    const auto isFirstLook = [this, looks = 0](const SupervisedCall& call) mutable {
        return isLook(call) && looks++ == 0;
    };
    underErrors([this] { return turnOff(); }, isFirstLook);
    Dictionary expected = choices;
    expected.set("ringtone-volume", 0.75);
    EXPECT_EQ(phone().dictionary(preferencesPath), expected);
}

TEST_P(UnlookedFile, ThatCanNeverBeLookedAtKeepsWhatItHolds) {
    underErrors([this] { return turnOff(); },
                [this](const SupervisedCall& call) { return isLook(call); });
    EXPECT_EQ(phone().dictionary(preferencesPath), choices);
}

TEST_P(UnlookedFile, ThatCannotBeReadEitherKeepsWhatItHolds) {
    const std::string file = phone().device().below(preferencesPath);
    underErrors(
        [this] { return turnOff(); },
        [&](const SupervisedCall& call) { return std::ranges::count(call.paths(), file) != 0; });
    EXPECT_EQ(phone().dictionary(preferencesPath), choices);
}

TEST_P(UnlookedFile, WhoseReadingBreaksOffKeepsWhatItHolds) {
    const std::string file = phone().device().below(preferencesPath);
    underErrors([this] { return turnOff(); },
                [&](const SupervisedCall& call) {
                    return call.number == SYS_read && call.file(0) == file;
                });
    EXPECT_EQ(phone().dictionary(preferencesPath), choices);
}

TEST_P(UnlookedFile, WhoseReadingBreaksOffOnceIsReadAllTheSame) {
    const std::string file = phone().device().below(preferencesPath);
    const auto isFirstRead = [&, reads = 0](const SupervisedCall& call) mutable {
        return call.number == SYS_read && call.file(0) == file && reads++ == 0;
    };
    underErrors([this] { return turnOff(); }, isFirstRead);
    Dictionary expected = choices;
    expected.set("ringtone-volume", 0.75);
    EXPECT_EQ(phone().dictionary(preferencesPath), expected);
}

TEST_P(UnlookedFile, WhoseWritingBreaksOffOnceIsWrittenAllTheSame) {
    int flushes = 0;
    supervise(
        {SYS_fsync}, [this] { return turnOff(); },
        [&](const SupervisedCall&) {
            return flushes++ == 0 ? Verdict{Verdict::Kind::fails, GetParam().number} : Verdict{};
        });
    Dictionary expected = choices;
    expected.set("ringtone-volume", 0.75);
    EXPECT_EQ(phone().dictionary(preferencesPath), expected);
}

INSTANTIATE_TEST_SUITE_P(By, UnlookedFile,
                         testing::Values(Error{"EIO", EIO}, Error{"EACCES", EACCES},
                                         Error{"ENOMEM", ENOMEM}, Error{"ELOOP", ELOOP}),
                         [](const auto& row) { return std::string{row.param.name}; });

/// The same, asked about files that are as they are.
class FoundFile : public testing::Test {
protected:
    BOOL exists(const char* path) { return NSFileManager::defaultManager().fileExistsAtPath(path); }
    std::filesystem::path below(const char* path) { return phone_.device().below(path); }

private:
    Phone phone_;
};

TEST_F(FoundFile, IsNoneWithoutAnEntryOrBelowAFile) {
    EXPECT_EQ(exists("/var/mobile/absent"), NO);
    EXPECT_EQ(exists("/var/absent/absent"), NO);
    EXPECT_EQ(exists("/var/run/notifications/absent"), NO);
}

TEST_F(FoundFile, IsNoneBehindALinkThatLeadsNowhere) {
    std::filesystem::create_symlink("absent", below("/var/mobile/link"));
    EXPECT_EQ(exists("/var/mobile/link"), NO);
}

TEST_F(FoundFile, IsOneBehindLinksWithoutAnEndForWhoCouldTell) {
    std::filesystem::create_symlink("circle", below("/var/mobile/circle"));
    EXPECT_EQ(exists("/var/mobile/circle"), YES);
}

TEST_F(FoundFile, IsOneWithANameThatTheSystemDoesNotTake) {
    EXPECT_EQ(exists(std::string(300, 'n').insert(0, "/var/").c_str()), YES);
}

}  // namespace
}  // namespace quillet::test
