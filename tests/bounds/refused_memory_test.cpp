// SPDX-License-Identifier: MIT
//
// Whichever piece of memory is refused while settings are read or written: what is in the file is
// whole, and what is answered about it is true.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "platform/standin/files/file.h"
#include "platform/standin/plist/property_list.h"
#include "platform/standin/runtime/dictionary_file.h"
#include "tests/bounds/counted_memory.h"
#include "tests/support/entries.h"
#include "tests/support/temporary_folder.h"

namespace quillet::test {
namespace {

namespace fs = std::filesystem;
using standin::Array;
using standin::Dictionary;
using standin::Form;
using standin::readDictionary;
using standin::readFile;
using standin::rewriteDictionary;
using standin::writeDictionary;
using standin::writeFileAtomically;
using standin::writePropertyList;
using Which = RefusedMemory::Which;

class RefusedPiece : public testing::Test {
protected:
    RefusedPiece() { EXPECT_TRUE(writeDictionary(path(), settings)); }

    const fs::path& path() const { return path_; }

    /// Has `round` done with each piece in turn refused, until there is no further.
    template <class Round>
    static void forEachPiece(Which which, Round round) {
        for (int granted = 0;; ++granted) {
            bool hasRefused = false;
            round([&](auto body) {
                const RefusedMemory memory{granted, which};
                auto answer = body();
                hasRefused = memory.hasRefused();
                return answer;
            });
            if (hasRefused) continue;
            EXPECT_GT(granted, 0);
            return;
        }
    }

    const Dictionary settings = {{"ring-vibrate", true},
                                 {"names", Array{std::string{"a longer name than fits inside"}}}};
    const Dictionary others = {{"ring-vibrate", false}, {"more", std::string(100, 'x')}};

private:
    TemporaryFolder folder_;
    fs::path path_ = folder_.path() / "settings.plist";
};

TEST_F(RefusedPiece, OnceDoesNotHinderReading) {
    forEachPiece(Which::next, [this](auto refusing) {
        EXPECT_EQ(refusing([this] { return readDictionary(path()); }), settings);
    });
}

TEST_F(RefusedPiece, AndAllAfterItGiveTheDictionaryOrNone) {
    forEachPiece(Which::all, [this](auto refusing) {
        const auto read = refusing([this] { return readDictionary(path()); });
        EXPECT_TRUE(!read || read == settings);
    });
}

TEST_F(RefusedPiece, OnceDoesNotHinderWriting) {
    forEachPiece(Which::next, [this](auto refusing) {
        ASSERT_TRUE(writeDictionary(path(), settings));
        EXPECT_TRUE(refusing([this] { return writeDictionary(path(), others); }));
        EXPECT_EQ(readDictionary(path()), others);
    });
}

TEST_F(RefusedPiece, OnceDoesNotHinderRewritingInTheFormOfTheFile) {
    const std::string binary = writePropertyList(settings, Form::binary);
    forEachPiece(Which::next, [&](auto refusing) {
        ASSERT_TRUE(writeFileAtomically(path(), binary));
        EXPECT_TRUE(refusing([this] { return rewriteDictionary(path(), others); }));
        EXPECT_EQ(readFile(path()), writePropertyList(others, Form::binary));
    });
}

TEST_F(RefusedPiece, AndAllAfterItLeaveTheOldDictionaryOrTheNew) {
    forEachPiece(Which::all, [this](auto refusing) {
        ASSERT_TRUE(writeDictionary(path(), settings));
        const bool isWritten = refusing([this] { return writeDictionary(path(), others); });
        EXPECT_EQ(readDictionary(path()), isWritten ? others : settings);
        EXPECT_EQ(entriesOf(path().parent_path()), 1) << "and no draft";
    });
}

}  // namespace
}  // namespace quillet::test
