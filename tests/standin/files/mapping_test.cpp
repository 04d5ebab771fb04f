// SPDX-License-Identifier: MIT
#include "platform/standin/files/mapping.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/mman.h>
#include <unistd.h>

#include <filesystem>
#include <system_error>

#include "platform/standin/files/descriptor.h"
#include "tests/support/child.h"
#include "tests/support/temporary_folder.h"

namespace quillet::test {
namespace {

using standin::Descriptor;
using standin::Mapping;

constexpr std::size_t size = 65536;

/// A file of `size` bytes, of which the first is 1.
class MappedFile : public testing::Test {
protected:
    MappedFile() {
        EXPECT_EQ(pwrite(file_.number(), "\1", 1, 0), 1);
        resize(size);
    }

    int file() const { return file_.number(); }
    std::filesystem::path path() const { return folder_.path() / "file"; }
    void resize(std::size_t to) const {
        EXPECT_EQ(ftruncate(file_.number(), static_cast<off_t>(to)), 0);
    }

    static char* bytesOf(const Mapping& mapping) { return static_cast<char*>(mapping.memory()); }

private:
    TemporaryFolder folder_;
    Descriptor file_{open(path().c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600)};
};

TEST_F(MappedFile, IsSharedByItsMappings) {
    const Mapping one{file(), size, path()};
    const Mapping other{file(), size, path()};
    bytesOf(one)[size - 1] = 7;
    EXPECT_EQ(bytesOf(other)[size - 1], 7);
    EXPECT_FALSE(one.isLost());
}

TEST_F(MappedFile, MayGrowBehindItsMapping) {
    const Mapping mapping{file(), 2 * size, path()};
    resize(2 * size);
    bytesOf(mapping)[2 * size - 1] = 7;
    EXPECT_FALSE(mapping.isLost());
}

TEST_F(MappedFile, ThatIsCutOffBecomesZerosAndItsMappingSaysSo) {
    const Mapping mapping{file(), size, path()};
    const Mapping other{file(), size, path()};
    EXPECT_EQ(bytesOf(mapping)[0], 1);
    resize(0);
    EXPECT_FALSE(mapping.isLost()) << "nobody has touched it yet";
    bytesOf(mapping)[1] = 7;
    EXPECT_TRUE(mapping.isLost());
    EXPECT_EQ(bytesOf(mapping)[0], 0);
    EXPECT_EQ(bytesOf(mapping)[1], 7);
    EXPECT_FALSE(other.isLost()) << "its own pages were not touched";
    bytesOf(other)[0] = 7;
    EXPECT_TRUE(other.isLost());
}

TEST_F(MappedFile, ThatIsCutOffIsNoticedHoweverManyMappingsThereWere) {
    for (int i = 0; i < 100; ++i) {
        const Mapping gone{file(), size, path()};
    }
    const Mapping mapping{file(), size, path()};
    resize(0);
    bytesOf(mapping)[1] = 7;
    EXPECT_TRUE(mapping.isLost());
}

TEST_F(MappedFile, FaultsElsewhereEndTheProcess) {
    Child child{[&] {
        const Mapping mapping{file(), size, path()};
        resize(0);
        void* const unwatched = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, file(), 0);
        *static_cast<volatile char*>(unwatched) = 1;
        return 0;
    }};
    EXPECT_NE(child.wait(), 0);
}

TEST_F(MappedFile, ThatIsNotOpenCannotBeMapped) {
    EXPECT_THROW(Mapping(-1, size, path()), std::system_error);
}

}  // namespace
}  // namespace quillet::test
