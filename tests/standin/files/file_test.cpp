// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "platform/standin/files/file.h"
#include "platform/standin/plist/property_list.h"
#include "tests/support/descriptors.h"
#include "tests/support/entries.h"

namespace quillet::standin {
namespace {

namespace fs = std::filesystem;

class File : public testing::Test {
protected:
    File() {
        std::string name = fs::temp_directory_path() / "quillet-file-test-XXXXXX";
        folder_ = ::mkdtemp(name.data());
    }
    ~File() override { fs::remove_all(folder_); }

    fs::path path(const std::string& name) const { return folder_ / name; }

    fs::path fileWith(const std::string& bytes) const {
        std::ofstream{path("file"), std::ios::binary} << bytes;
        return path("file");
    }

    std::ptrdiff_t filesInFolder() const { return test::entriesOf(folder_); }

private:
    fs::path folder_;
};

unsigned modeOf(const fs::path& path) {
    return static_cast<unsigned>(fs::status(path).permissions());
}

/// No file of this process may grow beyond `bytes` for as long as this lives.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t bytes) {
        previousHandler_ = ::signal(SIGXFSZ, SIG_IGN);
        ::getrlimit(RLIMIT_FSIZE, &previous_);
        const rlimit limit{bytes, previous_.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;
    ~FileSizeLimit() {
        ::setrlimit(RLIMIT_FSIZE, &previous_);
        ::signal(SIGXFSZ, previousHandler_);
    }

private:
    rlimit previous_{};
    void (*previousHandler_)(int) = nullptr;
};

TEST_F(File, ReadsTheBytesAsTheyAre) {
    const std::string large(1000003, 'x');
    for (const std::string& bytes : {std::string{}, std::string("a\0\xFF\r\n", 5), large}) {
        EXPECT_TRUE(readFile(fileWith(bytes)) == bytes) << bytes.size() << " bytes";
    }
}

TEST_F(File, AFileThatIsNotThereIsNothing) {
    EXPECT_EQ(readFile(path("absent")), std::nullopt);
    EXPECT_EQ(readFile(path("absent") / "file"), std::nullopt);
    EXPECT_EQ(readFile(fileWith("a") / "file"), std::nullopt);
    EXPECT_EQ(readFile(""), std::nullopt);
}

TEST_F(File, AFolderIsNothing) { EXPECT_EQ(readFile(path("")), std::nullopt); }

TEST_F(File, AFIFOIsNothingAndDoesNotBlock) {
    ASSERT_EQ(::mkfifo(path("fifo").c_str(), 0600), 0);
    EXPECT_EQ(readFile(path("fifo")), std::nullopt);
}

TEST_F(File, ADeviceIsNothing) { EXPECT_EQ(readFile("/dev/zero"), std::nullopt); }

TEST_F(File, IsReadUpToASizeThatIsAskedFor) {
    EXPECT_EQ(readFile(fileWith("12345"), 5), "12345");
    EXPECT_EQ(readFile(fileWith("123456"), 5), std::nullopt);
    EXPECT_EQ(readFile("/proc/self/status", 5), std::nullopt) << "whatever size it claims to have";
    fs::resize_file(path("file"), std::uintmax_t{3} << 30U);
    EXPECT_EQ(readFile(path("file"), 5), std::nullopt);
}

TEST_F(File, AFileOfTheSystemWithoutASizeOfItsOwnIsRead) {
    const auto bytes = readFile("/proc/self/status");
    ASSERT_TRUE(bytes);
    EXPECT_TRUE(bytes->starts_with("Name:"));
}

TEST_F(File, ThatCannotBeReadHasAReason) {
    EXPECT_EQ(faultOf(path("file"), "malformed"), "No such file or directory");
    EXPECT_EQ(faultOf(path(""), "malformed"), "not a file");
    EXPECT_EQ(faultOf(fileWith("a"), "malformed"), "malformed");
}

TEST_F(File, WritesANewFile) {
    EXPECT_TRUE(writeFileAtomically(path("new"), "bytes"));
    EXPECT_EQ(readFile(path("new")), "bytes");
    EXPECT_EQ(filesInFolder(), 1);
}

TEST_F(File, WritesBytesOfEverySize) {
    for (const std::size_t size : {std::size_t{0}, std::size_t{1}, std::size_t{5000001}}) {
        const std::string bytes(size, '\xAB');
        EXPECT_TRUE(writeFileAtomically(path("file"), bytes)) << size;
        EXPECT_TRUE(readFile(path("file")) == bytes) << size;
    }
}

TEST_F(File, ReplacesAFileAndKeepsItsMode) {
    for (const ::mode_t mode : {0600U, 0640U, 0666U, 0755U}) {
        const fs::path file = fileWith("old");
        ASSERT_EQ(::chmod(file.c_str(), mode), 0);
        EXPECT_TRUE(writeFileAtomically(file, "new")) << mode;
        EXPECT_EQ(readFile(file), "new") << mode;
        EXPECT_EQ(modeOf(file), mode);
    }
    EXPECT_EQ(filesInFolder(), 1);
}

TEST_F(File, AReaderThatHasTheOldFileOpenKeepsTheOldBytes) {
    std::ifstream reader{fileWith("old")};
    ASSERT_TRUE(writeFileAtomically(path("file"), "new"));
    std::string bytes;
    reader >> bytes;
    EXPECT_EQ(bytes, "old");
}

TEST_F(File, ANameOfTheGreatestLengthIsWritten) {
    const fs::path longest = path(std::string(255, 'n'));
    EXPECT_TRUE(writeFileAtomically(longest, "bytes"));
    EXPECT_EQ(readFile(longest), "bytes");
}

TEST_F(File, WritingBelowAFolderThatIsNotThereFails) {
    EXPECT_FALSE(writeFileAtomically(path("absent") / "file", "bytes"));
    EXPECT_EQ(filesInFolder(), 0);
}

TEST_F(File, WritingInPlaceOfAFolderFailsAndLeavesNoTemporaryFile) {
    ASSERT_TRUE(fs::create_directory(path("folder")));
    EXPECT_FALSE(writeFileAtomically(path("folder"), "bytes"));
    EXPECT_TRUE(fs::is_directory(path("folder")));
    EXPECT_EQ(filesInFolder(), 1);
}

TEST_F(File, WhenTheSpaceDoesNotSufficeTheOldBytesStayAndNoTemporaryFileIsLeft) {
    const fs::path file = fileWith("old");
    {
        const FileSizeLimit limit{100000};
        EXPECT_FALSE(writeFileAtomically(file, std::string(100001, 'x')));
        EXPECT_FALSE(writeFileAtomically(path("new"), std::string(300000, 'x')));
    }
    EXPECT_EQ(readFile(file), "old");
    EXPECT_FALSE(fs::exists(path("new")));
    EXPECT_EQ(filesInFolder(), 1);
}

TEST_F(File, NoCallLeavesADescriptorOpen) {
    ASSERT_TRUE(fs::create_directory(path("folder")));
    const std::ptrdiff_t before = test::openDescriptors();
    EXPECT_TRUE(writeFileAtomically(path("file"), "bytes"));
    EXPECT_FALSE(writeFileAtomically(path("folder"), "bytes"));
    EXPECT_TRUE(readFile(path("file")));
    EXPECT_FALSE(readFile(path("folder")));
    EXPECT_FALSE(readFile(path("absent")));
    {
        const FileSizeLimit limit{1};
        EXPECT_FALSE(writeFileAtomically(path("file"), "bytes"));
    }
    EXPECT_EQ(test::openDescriptors(), before);
}

TEST_F(File, AWriterKilledAtAnyInstantLeavesOneOfTheTwoContents) {
    const fs::path file = path("file");
    const std::string contents[] = {std::string(200000, 'a'), std::string(300000, 'b')};
    ASSERT_TRUE(writeFileAtomically(file, contents[0]));
    for (unsigned round = 0; round < 40; ++round) {
        const pid_t writer = ::fork();
        ASSERT_NE(writer, -1);
        if (writer == 0) {
            for (std::size_t i = 1;; ++i) writeFileAtomically(file, contents[i % 2]);
        }
        ::usleep(500 + round * 97);
        ::kill(writer, SIGKILL);
        ASSERT_EQ(::waitpid(writer, nullptr, 0), writer);
        const auto bytes = readFile(file);
        EXPECT_TRUE(bytes == contents[0] || bytes == contents[1]) << round;
    }
}

}  // namespace
}  // namespace quillet::standin
