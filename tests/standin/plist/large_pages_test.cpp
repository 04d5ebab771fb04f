// SPDX-License-Identifier: MIT
#include "platform/standin/plist/large_pages.h"

#include <gtest/gtest.h>
#include <sys/mman.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <new>
#include <string>
#include <string_view>

namespace quillet::test {
namespace {

using standin::preferLargePages;

/// Memory of the system's own, with something written all over it.
class Memory {
public:
    explicit Memory(std::size_t size)
        : memory_{mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0)},
          size_{size} {
        if (memory_ == MAP_FAILED) throw std::bad_alloc{};
        std::memset(memory_, 'm', size);
    }
    ~Memory() { munmap(memory_, size_); }
    Memory(const Memory&) = delete;
    Memory& operator=(const Memory&) = delete;

    char* bytes() const { return static_cast<char*>(memory_); }
    std::string_view text() const { return {bytes(), size_}; }

private:
    void* memory_;
    std::size_t size_;
};

/// Whether the system has been asked for large pages there. See VmFlags in proc(5).
bool isPreferred(const char& place) {
    const auto address = reinterpret_cast<std::uintptr_t>(&place);
    std::ifstream mappings{"/proc/self/smaps"};
    bool isHere = false;
    for (std::string line; std::getline(mappings, line);) {
        std::uintptr_t begin = 0;
        std::uintptr_t end = 0;
        if (std::sscanf(line.c_str(), "%lx-%lx ", &begin, &end) == 2) {
            isHere = begin <= address && address < end;
        } else if (isHere && line.starts_with("VmFlags:")) {
            return line.find(" hg") != std::string::npos;
        }
    }
    return false;
}

constexpr std::size_t large = std::size_t{8} << 20U;

TEST(LargePages, ArePreferredForLargeMemoryWhereThereAreAny) {
    if (!std::filesystem::exists("/sys/kernel/mm/transparent_hugepage")) GTEST_SKIP();
    const Memory memory{large};
    preferLargePages(&memory.bytes()[1], large - 1);
    EXPECT_FALSE(isPreferred(memory.bytes()[0])) << "a page that is only partly meant";
    EXPECT_TRUE(isPreferred(memory.bytes()[4096]));
    EXPECT_TRUE(isPreferred(memory.text().back()));
}

TEST(LargePages, AreNotPreferredForSmallMemory) {
    const Memory memory{large / 4};
    preferLargePages(memory.bytes(), large / 4);
    preferLargePages(nullptr, 0);
    EXPECT_FALSE(isPreferred(memory.text().front()));
    EXPECT_FALSE(isPreferred(memory.text().back()));
}

TEST(LargePages, ChangeNothingThatIsThere) {
    const Memory memory{large};
    preferLargePages(&memory.bytes()[100], large - 5000);
    EXPECT_TRUE(memory.text() == std::string(large, 'm'));
}

}  // namespace
}  // namespace quillet::test
