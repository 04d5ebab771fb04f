// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <random>
#include <stdexcept>
#include <string>

#include "platform/standin/notifications/notification_table.h"
#include "tests/support/program.h"
#include "tests/support/stride.h"
#include "tests/support/temporary_folder.h"

namespace quillet::test {
namespace {

namespace fs = std::filesystem;
using standin::NotificationTable;
using ::testing::HasSubstr;

/// Bytes of an entry and of the header before the first, where the bell in the header lies, and
/// where in an entry its parts lie.
constexpr std::size_t entrySize = 256;
constexpr std::size_t bellAt = 240;
constexpr std::size_t postsAt = 8;
constexpr std::size_t sealAt = 12;
constexpr std::size_t lengthAt = 16;
constexpr std::size_t nameAt = 17;

constexpr std::array names = {"a.name", "b", "another.name"};
constexpr std::size_t freeAt = entrySize * (1 + names.size());

/// Memory that holds zeros, with so many bytes free before it, where the next mapping of that size
/// will be.
class ZerosBehind {
public:
    ZerosBehind(std::size_t size, std::size_t zeros)
        : zeros_{zeros},
          memory_{static_cast<char*>(
                      mmap(nullptr, size + zeros, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0)) +
                  size} {
        munmap(memory_ - size, size);
    }
    ZerosBehind(const ZerosBehind&) = delete;
    ZerosBehind& operator=(const ZerosBehind&) = delete;
    ~ZerosBehind() { munmap(memory_, zeros_); }

private:
    std::size_t zeros_;
    char* memory_;
};

/// The file of a table with three names, the first of which has a word.
class DamagedTable : public testing::Test {
protected:
    DamagedTable() {
        NotificationTable::create(path(), {{names[0], 7}, {names[1], 0}, {names[2], 0}});
        sound_ = readText(path());
    }

    fs::path path() const { return folder_.path() / "folder" / "table"; }
    const std::string& sound() const { return sound_; }

    void write(const std::string& bytes) const { writeText(path(), bytes); }
    void put(std::size_t at, char byte) const {
        std::fstream{path(), std::ios::in | std::ios::out | std::ios::binary}
            .seekp(static_cast<std::streamoff>(at))
            .put(byte);
    }

    /// The reason why the table is refused, or nothing.
    std::string refusal() const {
        try {
            const NotificationTable table{path()};
            return "";
        } catch (const std::runtime_error& error) {
            return error.what();
        }
    }
    void expectRefused(const std::string& bytes, const std::string& what) const {
        write(bytes);
        EXPECT_EQ(refusal(), path().string() + ": not a table of notifications") << what;
        EXPECT_EQ(readText(path()), bytes) << what;
    }
    /// For each place from `begin` to `end`.
    void expectAnyOtherByteRefused(std::size_t begin, std::size_t end) const {
        for (std::size_t at = begin; at < end; ++at) {
            for (std::size_t change = 1; change < 256; change += stride) {
                put(at, static_cast<char>(sound()[at] + static_cast<int>(change)));
                ASSERT_NE(refusal(), "") << at << ' ' << change;
            }
            put(at, sound()[at]);
        }
    }

    /// Whether the table has its names, and takes another one.
    bool isServing() const {
        NotificationTable table{path()};
        return table.find(names[0]) != nullptr && table.find(names[0])->state.load() == 7 &&
               std::ranges::all_of(names, [&](auto name) { return table.find(name); }) &&
               table.find("new") == nullptr && table.findOrAdd("new") != nullptr &&
               table.find("new")->state.load() == 0 && NotificationTable{path()}.find("new");
    }
    void expectServes(const std::string& bytes, const std::string& what) const {
        write(bytes);
        EXPECT_EQ(refusal(), "") << what;
        EXPECT_TRUE(isServing()) << what;
    }

    /// The sound bytes with others at some place.
    std::string changed(std::size_t at, const std::string& bytes) const {
        return std::string{sound_}.replace(at, bytes.size(), bytes);
    }

private:
    TemporaryFolder folder_;
    [[maybe_unused]] bool isMade_ = fs::create_directory(folder_.path() / "folder");
    std::string sound_;
};

TEST_F(DamagedTable, ASoundOneServes) { expectServes(sound(), "sound"); }

TEST_F(DamagedTable, ASoundOneIsToTheByteWhatDevicesHoldAlready) {
    std::string header = "Quillet notifications, form 3";
    header.resize(entrySize);
    EXPECT_EQ(sound().substr(0, entrySize), header);
    std::string entry(entrySize, '\0');
    entry.replace(sealAt, 4, "\xE5\x2D\x0C\xE7");  // FNV-1a of "b"
    entry[lengthAt] = 1;
    entry[nameAt] = 'b';
    EXPECT_EQ(sound().substr(2 * entrySize, entrySize), entry);
}

TEST_F(DamagedTable, AnyByteOfTheMarkWithAnyOtherValueIsRefused) {
    expectAnyOtherByteRefused(0, bellAt);
}

TEST_F(DamagedTable, AnyBellServes) {
    for (std::size_t at = bellAt; at < entrySize; ++at) {
        expectServes(changed(at, "\xFF"), std::to_string(at));
    }
    expectServes(changed(bellAt, std::string(entrySize - bellAt, '\xFF')), "all of it");
}

TEST_F(DamagedTable, AnyByteOfANameAndItsSealWithAnyOtherValueIsRefused) {
    expectAnyOtherByteRefused(entrySize + sealAt, 2 * entrySize);
}

TEST_F(DamagedTable, AnyByteBehindTheNamesIsRefusedOrOverwritten) {
    for (std::size_t at = freeAt; at < sound().size(); at += stride) {
        // Somebody who died while he added a name may have left it there.
        const bool mayBe = at >= freeAt + lengthAt && at < freeAt + entrySize;
        if (mayBe) {
            expectServes(changed(at, "\x01"), std::to_string(at));
            write(sound());
        } else {
            put(at, 1);
            ASSERT_NE(refusal(), "") << at;
            put(at, 0);
        }
    }
}

TEST_F(DamagedTable, AnyLengthOfTheFileIsRefusedOrServes) {
    for (std::size_t size = 0; size < sound().size(); size += stride) {
        const std::string bytes = sound().substr(0, size);
        if (size % entrySize == 0 && size > freeAt) {
            expectServes(bytes, std::to_string(size));
        } else {
            write(bytes);
            ASSERT_NE(refusal(), "") << size;
        }
    }
    for (const std::size_t more : {1U, 255U}) {
        expectRefused(sound() + std::string(more, '\0'), std::to_string(more) + " bytes more");
    }
    expectServes(sound() + std::string(10 * entrySize, '\0'), "more room");
    expectRefused(sound() + std::string(10 * entrySize, 'x'), "something more");
}

TEST_F(DamagedTable, OneThatIsTooLargeIsRefused) {
    constexpr std::size_t largest = entrySize * (2 + NotificationTable::maxNames);
    fs::resize_file(path(), largest);
    EXPECT_EQ(refusal(), "");
    fs::resize_file(path(), largest + entrySize);
    const ZerosBehind zeros{largest, entrySize};
    EXPECT_THAT(refusal(), HasSubstr("not a table"));
}

TEST_F(DamagedTable, OneWithoutRoomForTheEndOfItsNamesIsRefused) {
    const std::string header = sound().substr(0, entrySize);
    write(header + std::string(entrySize, '\0'));
    EXPECT_EQ(refusal(), "");
    expectRefused(header, "no end at all");
}

TEST_F(DamagedTable, RandomBytesBehindARightHeaderAreRefused) {
    std::mt19937 random{1};
    for (int round = 0; round < 100; ++round) {
        std::string bytes = sound();
        std::generate(bytes.begin() + entrySize, bytes.end(),
                      [&] { return static_cast<char>(random()); });
        expectRefused(bytes, "round " + std::to_string(round));
    }
}

TEST_F(DamagedTable, ANameThatIsThereTwiceIsRefused) {
    const std::string first = sound().substr(entrySize, entrySize);
    expectRefused(changed(2 * entrySize, first), "the second is the first");
    expectRefused(changed(freeAt, first), "the fourth is the first");
}

TEST_F(DamagedTable, AGapBetweenNamesIsRefused) {
    expectRefused(changed(2 * entrySize, std::string(entrySize, '\0')), "no second name");
    expectRefused(changed(2 * entrySize + sealAt, std::string(4, '\0')), "no second seal");
}

TEST_F(DamagedTable, ALengthOfNoneOrTooManyIsRefused) {
    for (const char* const length : {"\xF0", "\xFF"}) {
        expectRefused(changed(entrySize + lengthAt, length), "too long");
    }
    expectRefused(changed(entrySize + lengthAt, std::string(1, '\0')), "empty");
}

TEST_F(DamagedTable, AFreePlaceWithAWordOrPostsIsRefused) {
    expectRefused(changed(freeAt, "\x01"), "a word");
    expectRefused(changed(freeAt + postsAt, "\x01"), "a post");
}

TEST_F(DamagedTable, WhatADeadAdderLeftOfANameIsOverwritten) {
    expectServes(changed(freeAt + lengthAt, "\x30" + std::string(48, 'x')), "no seal");
    expectServes(changed(freeAt + nameAt, std::string(entrySize - nameAt, 'x')), "no length");
}

TEST_F(DamagedTable, OnesOfOtherFormsAreRefused) {
    expectRefused("", "empty");
    expectRefused("some text\n", "text");
    expectRefused("QTYTABL1" + std::string(65552, '\0'), "the first form");
    expectRefused(changed(sound().find('3'), "2"), "the form before");
    expectRefused(std::string(sound().size(), 'x'), "letters");
    expectRefused(std::string(sound().size(), '\0'), "zeros");
}

TEST_F(DamagedTable, WhatIsNoFileIsRefused) {
    fs::remove(path());
    EXPECT_THAT(refusal(), HasSubstr("No such file"));
    fs::create_directory(path());
    EXPECT_NE(refusal(), "");
    fs::remove(path());
    ASSERT_EQ(mkfifo(path().c_str(), 0600), 0);
    EXPECT_THAT(refusal(), HasSubstr("not a table"));
}

TEST_F(DamagedTable, ALinkIsNotFollowed) {
    const fs::path elsewhere = path().parent_path() / "elsewhere";
    fs::rename(path(), elsewhere);
    fs::create_symlink(elsewhere, path());
    EXPECT_THAT(refusal(), HasSubstr("symbolic links"));
    EXPECT_EQ(readText(elsewhere), sound());
}

TEST_F(DamagedTable, IsMadeForItsUserAlone) {
    const mode_t before = umask(0);
    fs::permissions(path().parent_path(), fs::perms{0755});
    const fs::path other = path().parent_path() / "other";
    NotificationTable::create(other);
    umask(before);
    EXPECT_EQ(fs::status(other).permissions(), fs::perms{0600});
    EXPECT_EQ(fs::status(path().parent_path()).permissions(), fs::perms{0700});
}

TEST_F(DamagedTable, OneThatOthersMightOpenIsRefused) {
    for (const unsigned mode : {0640U, 0604U, 0620U, 0666U}) {
        fs::permissions(path(), fs::perms{mode});
        EXPECT_THAT(refusal(), HasSubstr("closed to others")) << mode;
    }
    fs::permissions(path(), fs::perms{0600});
    for (const unsigned mode : {0755U, 0710U, 0701U}) {
        fs::permissions(path().parent_path(), fs::perms{mode});
        EXPECT_THAT(refusal(), HasSubstr("closed to others")) << mode;
    }
}

TEST_F(DamagedTable, OneOfAnotherUserIsRefused) {
    if (geteuid() != 0) GTEST_SKIP() << "only the superuser can give files away";
    ASSERT_EQ(chown(path().c_str(), 1, 1), 0);
    EXPECT_THAT(refusal(), HasSubstr("the user's own"));
}

}  // namespace
}  // namespace quillet::test
