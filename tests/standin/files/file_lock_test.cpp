// SPDX-License-Identifier: MIT
#include "platform/standin/files/file_lock.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <thread>
#include <vector>

#include "platform/standin/files/descriptor.h"
#include "tests/support/child.h"
#include "tests/support/real_time.h"
#include "tests/support/temporary_folder.h"

namespace quillet::test {
namespace {

using standin::Descriptor;
using standin::FileLock;

/// A file, opened for each lock by itself.
class Lock : public testing::Test {
protected:
    Lock() { std::ofstream{path()} << "0"; }

    std::filesystem::path path() const { return folder_.path() / "file"; }
    Descriptor opened() const { return Descriptor{open(path().c_str(), O_RDWR | O_CLOEXEC)}; }

    /// Adds one to the number in the file, in the most careless way.
    void count() const {
        const Descriptor file = opened();
        const FileLock lock{file.number()};
        if (!lock.isHeld()) return;
        int number = 0;
        std::ifstream{path()} >> number;
        std::ofstream{path()} << number + 1;
    }
    void countTo(int number) const {
        for (int i = 0; i < number; ++i) count();
    }
    int counted() const {
        int number = 0;
        std::ifstream{path()} >> number;
        return number;
    }

private:
    TemporaryFolder folder_;
};

TEST_F(Lock, ForkedChildrenAndTheirThreadsTakeTurns) {
    std::vector<std::unique_ptr<Child>> children;
    for (int child = 0; child < 4; ++child) {
        children.push_back(std::make_unique<Child>([&] {
            std::thread other{[&] { countTo(50); }};
            countTo(50);
            other.join();
            return 0;
        }));
    }
    for (const auto& child : children) EXPECT_EQ(child->wait(), 0);
    EXPECT_EQ(counted(), 400);
}

TEST_F(Lock, OfAHolderThatDiesIsFree) {
    Gate held;
    Child holder{[&] {
        const Descriptor file = opened();
        const FileLock lock{file.number()};
        held.open();
        for (;;) pause();
        return 0;
    }};
    ASSERT_TRUE(held.pass());
    holder.kill();
    EXPECT_EQ(holder.wait(), -SIGKILL);
    const Descriptor file = opened();
    EXPECT_TRUE(FileLock{file.number()}.isHeld());
}

TEST_F(Lock, OfAHolderThatDoesNotMoveIsNotHadAfterASecond) {
    const Descriptor held = opened();
    const FileLock holder{held.number()};
    ASSERT_TRUE(holder.isHeld());
    const Descriptor file = opened();
    const double start = realNow();
    EXPECT_FALSE(FileLock{file.number()}.isHeld());
    EXPECT_GE(realNow() - start, 1.0);
    EXPECT_LT(realNow() - start, 5.0);
}

TEST_F(Lock, OfWhatIsNoOpenFileIsNotHadAtOnce) {
    const double start = realNow();
    EXPECT_FALSE(FileLock{-1}.isHeld());
    EXPECT_LT(realNow() - start, 0.9);
}

}  // namespace
}  // namespace quillet::test
