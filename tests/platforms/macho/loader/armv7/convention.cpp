// SPDX-License-Identifier: MIT
#include "tests/platforms/macho/loader/convention.h"

#include <sys/mman.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <new>
#include <utility>

// See convention.S. They are called by the small functions below alone.
extern "C" void quilletCallWithWords();
extern "C" void quilletCallInModule();

namespace quillet::macho {

namespace {

/// A function of two instructions, which stand in front of what they load.
struct SmallFunction {
    std::array<std::uint32_t, 2> instructions = {
        0xE59FC000,  // ldr ip, [pc]
        0xE59FF000,  // ldr pc, [pc]
    };
    const void* value;
    void (*goesOnTo)();
};

/// All that the process makes. Nobody can write to them in between.
class SmallFunctions {
public:
    SmallFunctions() {
        memory_ = mmap(nullptr, size, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (memory_ == MAP_FAILED) fail();
        next_ = static_cast<SmallFunction*>(memory_);
        end_ = next_ + size / sizeof(SmallFunction);
    }

    /// The function for `value` that goes on to `common`; one for each pair.
    const void* get(const void* value, void (*common)()) {
        const auto [known, isNew] = known_.try_emplace({value, common}, next_);
        if (isNew) make(value, common);
        return known->second;
    }

private:
    static constexpr std::size_t size = 0x10000;

    void make(const void* value, void (*common)()) {
        if (next_ == end_) fail();
        protect(PROT_READ | PROT_WRITE);
        auto* const function = new (next_++) SmallFunction{.value = value, .goesOnTo = common};
        protect(PROT_READ | PROT_EXEC);
        auto* const begin = reinterpret_cast<char*>(function);
        __builtin___clear_cache(begin, begin + sizeof *function);
    }

    void protect(int protection) {
        if (mprotect(memory_, size, protection) != 0) fail();
    }

    [[noreturn]] static void fail() {
        std::fputs("no room for functions between the module and this system\n", stderr);
        std::abort();
    }

    void* memory_;
    SmallFunction* next_;
    SmallFunction* end_;
    std::map<std::pair<const void*, void (*)()>, const void*> known_;
};

SmallFunctions& smallFunctions() {
    static SmallFunctions functions;
    return functions;
}

}  // namespace

const void* callableWithWords(WordFunction function) {
    return smallFunctions().get(function, quilletCallWithWords);
}

const void* callableInModule(const void* code) {
    return smallFunctions().get(code, quilletCallInModule);
}

}  // namespace quillet::macho
