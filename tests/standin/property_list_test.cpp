// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <sys/syscall.h>

#include <cerrno>
#include <filesystem>
#include <optional>
#include <string>

#include "platform/property_list.h"
#include "platform/standin/files/file.h"
#include "platform/standin/plist/property_list.h"
#include "platform/standin/runtime/dictionary_file.h"
#include "tests/standin/on_a_device.h"
#include "tests/support/supervisor.h"
#include "tests/support/values.h"

namespace quillet::test {
namespace {

using standin::Array;
using standin::Dictionary;
using standin::Form;
using standin::Value;
using ::testing::ElementsAre;
using ::testing::StartsWith;

constexpr char path[] = "/var/mobile/a.plist";

class DictionaryFile : public OnADevice {
protected:
    void write(const std::string& bytes) {
        ASSERT_TRUE(standin::writeFileAtomically(device().below(path), bytes));
    }
    void write(const Value& value) { write(standin::writePropertyList(value)); }
    std::optional<Value> read() {
        const auto bytes = standin::readFile(device().below(path));
        return bytes ? standin::readPropertyList(*bytes) : std::nullopt;
    }

    void expectNoDictionary() {
        EXPECT_FALSE(NSDictionary::dictionaryWithContentsOfFile(path));
        EXPECT_FALSE(NSDictionary::initWithContentsOfFile(path));
        EXPECT_FALSE(NSMutableDictionary::dictionaryWithContentsOfFile(path));
        EXPECT_FALSE(NSMutableDictionary::initWithContentsOfFile(path));
    }
};

TEST_F(DictionaryFile, IsReadByAllFourFunctions) {
    write(Dictionary{{"key", std::string{"value"}}});
    const std::pair<const char*, NSDictionary> rows[] = {
        {"NSDictionary, new", NSDictionary::dictionaryWithContentsOfFile(path)},
        {"NSDictionary, made", NSDictionary::initWithContentsOfFile(path)},
        {"NSMutableDictionary, new", NSMutableDictionary::dictionaryWithContentsOfFile(path)},
        {"NSMutableDictionary, made", NSMutableDictionary::initWithContentsOfFile(path)},
    };
    for (const auto& [function, dictionary] : rows) {
        EXPECT_EQ(standin::text(dictionary.objectForKey("key")), "value") << function;
    }
}

TEST_F(DictionaryFile, ThatIsMissingBrokenOrSomethingElseGivesNil) {
    expectNoDictionary();
    write(std::string{});
    expectNoDictionary();
    write(std::string{"no property list"});
    expectNoDictionary();
    write(Value{Array{}});
    expectNoDictionary();
    // An archive's identifier, though in XML it looks like a dictionary.
    write(Value{standin::UID{7}});
    expectNoDictionary();
    write(standin::writePropertyList(standin::UID{7}, Form::binary));
    expectNoDictionary();
    std::filesystem::remove(device().below(path));
    std::filesystem::create_directory(device().below(path));
    expectNoDictionary();
}

TEST_F(DictionaryFile, ThatCannotBeReadIsTriedOnceMore) {
    write(Dictionary{});
    int reads = 0;
    const auto read = [this] { return standin::readDictionary(device().below(path)) ? 1 : 0; };
    EXPECT_EQ(supervise({SYS_read}, read,
                        [&](const SupervisedCall&) {
                            ++reads;
                            return Verdict{Verdict::Kind::fails, EIO};
                        }),
              0);
    EXPECT_EQ(reads, 2);
}

TEST_F(DictionaryFile, ThatIsTooLargeIsNotReadAtAll) {
    write(std::string{});
    const std::string file = device().below(path);
    std::filesystem::resize_file(file, standin::maxSettingsSize + 1);
    int reads = 0;
    const auto read = [this] {
        expectNoDictionary();
        return 0;
    };
    supervise({SYS_read}, read, [&](const SupervisedCall& call) {
        reads += call.file(0) == file ? 1 : 0;
        return Verdict{};
    });
    EXPECT_EQ(reads, 0);
    EXPECT_EQ(NSFileManager::defaultManager().fileExistsAtPath(path), YES);
}

TEST_F(DictionaryFile, ThatGivesNilSaysWhereAndWhy) {
    const std::string file = device().below(path);
    EXPECT_EQ(standin::whyNoDictionary(file), "No such file or directory");
    write(std::string{"<dict>\n<key>a</key></dict>"});
    EXPECT_EQ(standin::whyNoDictionary(file), "line 2, column 13: a key without a value");
    write(std::string{"bplist00"});
    EXPECT_EQ(standin::whyNoDictionary(file), "offset 0: a trailer that does not fit the file");
    write(Value{Array{}});
    EXPECT_EQ(standin::whyNoDictionary(file), "it holds no dictionary");
    std::filesystem::resize_file(file, standin::maxSettingsSize + 1);
    EXPECT_THAT(standin::whyNoDictionary(file), StartsWith("more than 64 MB"));
}

TEST_F(DictionaryFile, IsLookedUpBelowTheDevicesRoot) {
    EXPECT_FALSE(NSDictionary::dictionaryWithContentsOfFile(device().below(path).c_str()));
    EXPECT_EQ(NSFileManager::defaultManager().fileExistsAtPath("/etc/passwd"), NO);
}

TEST_F(DictionaryFile, NothingIsAtANilPath) {
    EXPECT_EQ(NSFileManager::defaultManager().fileExistsAtPath(NSString{}), NO);
}

TEST_F(DictionaryFile, KeysAreMatchedExactly) {
    write(Dictionary{{"key", false}, {"", std::int64_t{0}}});
    const auto dictionary = NSDictionary::dictionaryWithContentsOfFile(path);
    EXPECT_TRUE(dictionary.objectForKey("key")) << "a false value is a value";
    EXPECT_TRUE(dictionary.objectForKey(""));
    for (const char* const other : {"Key", "key ", "ke", "keys"}) {
        EXPECT_FALSE(dictionary.objectForKey(other)) << other;
    }
}

TEST_F(DictionaryFile, IsWrittenWithWhatWasSetAndWhatWasThere) {
    write(Dictionary{{"old", std::string{"kept"}}, {"flag", std::int64_t{7}}});
    const auto dictionary = NSMutableDictionary::initWithContentsOfFile(path);
    dictionary.setValue(NSNumber::numberWithBool(NO), "flag");
    dictionary.setObject(NSNumber::numberWithFloat(0.6F), "volume");
    EXPECT_EQ(dictionary.writeToFile(path, YES), YES);
    EXPECT_EQ(
        read(),
        Value(Dictionary{{"old", std::string{"kept"}}, {"flag", false}, {"volume", double{0.6F}}}));
}

TEST_F(DictionaryFile, IsWrittenInTheXMLFormAndRewrittenInItsOwn) {
    const Dictionary before{{"key", true}, {"date", standin::Date{0.5}}};
    const std::string file = device().below(path);
    for (const Form form : {Form::xml, Form::binary}) {
        write(standin::writePropertyList(before, form));
        auto dictionary = standin::readDictionary(file).value();
        dictionary.set("key", false);
        EXPECT_TRUE(standin::rewriteDictionary(file, dictionary));
        EXPECT_EQ(standin::readFile(file), standin::writePropertyList(dictionary, form));
        EXPECT_TRUE(standin::writeDictionary(file, dictionary));
        EXPECT_EQ(standin::readFile(file), standin::writePropertyList(dictionary));
    }
}

TEST_F(DictionaryFile, IsRewrittenInTheXMLFormWhereThereIsNone) {
    const std::string file = device().below(path);
    EXPECT_TRUE(standin::rewriteDictionary(file, Dictionary{}));
    EXPECT_EQ(standin::readFile(file), standin::writePropertyList(Dictionary{}));
    write(std::string{"no property list"});
    EXPECT_TRUE(standin::rewriteDictionary(file, Dictionary{}));
    EXPECT_EQ(standin::readFile(file), standin::writePropertyList(Dictionary{}));
}

TEST_F(DictionaryFile, IsNotRewrittenWhenItsFormCannotBeRead) {
    const std::string file = device().below(path);
    write(std::string{});
    std::filesystem::resize_file(file, standin::maxSettingsSize + 1);
    EXPECT_FALSE(standin::rewriteDictionary(file, Dictionary{}));
    EXPECT_EQ(std::filesystem::file_size(file), standin::maxSettingsSize + 1);
}

TEST_F(DictionaryFile, IsNotChangedBeforeItIsWritten) {
    write(Dictionary{{"key", true}});
    NSMutableDictionary::initWithContentsOfFile(path).setValue(NSString{"new"}, "key");
    EXPECT_EQ(read(), Value(Dictionary{{"key", true}}));
}

TEST_F(DictionaryFile, SettingNilRemovesTheEntry) {
    const auto dictionary = NSMutableDictionary::init();
    dictionary.setValue(NSString{"value"}, "key");
    dictionary.setValue(Object{}, "key");
    dictionary.setValue(Object{}, "absent");
    EXPECT_FALSE(dictionary.objectForKey("key"));
    EXPECT_EQ(dictionary.writeToFile(path, YES), YES);
    EXPECT_EQ(read(), Value(Dictionary{}));
}

TEST_F(DictionaryFile, ThatCannotBeWrittenAnswersNo) {
    const auto dictionary = NSMutableDictionary::init();
    EXPECT_EQ(dictionary.writeToFile("/no/such/folder/a.plist", YES), NO);
    EXPECT_EQ(dictionary.writeToFile("/var", NO), NO);
    EXPECT_TRUE(std::filesystem::is_directory(device().below("/var")));
}

TEST_F(DictionaryFile, TheFileManagerFindsFilesAndFolders) {
    const auto manager = NSFileManager::defaultManager();
    EXPECT_EQ(manager.fileExistsAtPath(path), NO);
    write(std::string{});
    EXPECT_EQ(manager.fileExistsAtPath(path), YES);
    EXPECT_EQ(manager.fileExistsAtPath("/var/mobile"), YES);
    EXPECT_EQ(manager.fileExistsAtPath("/var/mobile/a.plist/below"), NO);
}

TEST_F(DictionaryFile, EveryOperationIsTraced) {
    write(Dictionary{{"key", true}});
    const auto dictionary = NSMutableDictionary::initWithContentsOfFile(path);
    dictionary.objectForKey("key");
    dictionary.objectForKey("absent");
    dictionary.setValue(Object{}, "key");
    dictionary.writeToFile(path, YES);
    EXPECT_THAT(
        calls(),
        ElementsAre(R"(NSMutableDictionary initWithContentsOfFile:("/var/mobile/a.plist") = )"
                    R"("<NSMutableDictionary: 1 entries>")",
                    R"(NSMutableDictionary objectForKey:("key") = true)",
                    R"(NSMutableDictionary objectForKey:("absent") = null)",
                    R"(NSMutableDictionary setValue:forKey:(null, "key"))",
                    R"(NSMutableDictionary writeToFile:atomically:("/var/mobile/a.plist", true) )"
                    R"(= true)"));
}

}  // namespace
}  // namespace quillet::test
