// SPDX-License-Identifier: MIT
//
// Calls as the device makes them on 32-bit ARM, written out in words, and calls into a module,
// whose code may leave r9 changed.

#include "tests/platforms/macho/loader/convention.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <bit>
#include <vector>

namespace quillet::macho {
namespace {

using ::testing::ElementsAre;

using Word = std::uint32_t;

template <class Function>
Function* asFunction(const void* code) {
    return reinterpret_cast<Function*>(const_cast<void*>(code));
}

/// What the last function below was given.
std::vector<double> given;

std::uint64_t take(int a, double b, std::uint8_t c, std::uint64_t d, float e) {
    given = {static_cast<double>(a), b, static_cast<double>(c), static_cast<double>(d), e};
    return 0x1122334455667788;
}

TEST(CallFromTheModule, TakesArgumentsOfTwoWordsWhereverTheyBegin) {
    const auto half = std::bit_cast<std::uint64_t>(0.5);
    auto* const call =
        asFunction<std::uint64_t(Word, Word, Word, Word, Word, Word, Word)>(code<take>());
    EXPECT_EQ(call(static_cast<Word>(-7), static_cast<Word>(half), static_cast<Word>(half >> 32),
                   0xAB, 2, 1, std::bit_cast<Word>(1.5F)),
              0x1122334455667788U);
    EXPECT_THAT(given, ElementsAre(-7, 0.5, 0xAB, 4294967298.0, 1.5));
}

float twoAndAHalf() { return 2.5F; }

TEST(CallFromTheModule, AnswersRealsInRegistersOfNumbers) {
    auto* const call = asFunction<Word()>(code<twoAndAHalf>());
    EXPECT_EQ(call(), std::bit_cast<Word>(2.5F));
}

/// The stack's distance from where a function of Linux may count on finding it.
Word misalignment() { return reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0)) % 8; }

/// Calls `function` with a stack that is moved down by `words`.
Word callWithStackMoved(const void* function, Word words) {
    register Word answer asm("r0");
    asm volatile(
        "mov r4, sp\n\t"
        "sub sp, sp, %[words], lsl #2\n\t"
        "blx %[function]\n\t"
        "mov sp, r4"
        : "=r"(answer)
        : [words] "r"(words), [function] "r"(function)
        : "r1", "r2", "r3", "r4", "ip", "lr", "memory", "cc");
    return answer;
}

TEST(CallFromTheModule, FindsTheStackAlignedForLinux) {
    EXPECT_EQ(callWithStackMoved(code<misalignment>(), 0),
              callWithStackMoved(code<misalignment>(), 1));
    const auto* const plain = reinterpret_cast<const void*>(&misalignment);
    EXPECT_NE(callWithStackMoved(plain, 0), callWithStackMoved(plain, 1));
}

/// As code of the module: uses r9 as it likes.
[[gnu::naked]] Word changeR9() { asm("mov r9, #0\n\tmov r0, #5\n\tbx lr"); }

/// What stands in r9 after `function` was called with 42 in it.
Word r9After(const void* function) {
    Word left = 0;
    asm volatile(
        "mov r5, r9\n\t"
        "mov r9, #42\n\t"
        "blx %[function]\n\t"
        "mov %[left], r9\n\t"
        "mov r9, r5"
        : [left] "=&r"(left)
        : [function] "r"(function)
        : "r0", "r1", "r2", "r3", "r5", "ip", "lr", "memory", "cc");
    return left;
}

TEST(CallIntoTheModule, KeepsR9) {
    EXPECT_EQ(callable(changeR9)(), 5U);
    EXPECT_EQ(r9After(reinterpret_cast<const void*>(callable(changeR9))), 42U);
    EXPECT_EQ(r9After(reinterpret_cast<const void*>(changeR9)), 0U);
}

Word weigh(Word a, Word b, Word c, Word d, Word e, Word f, Word g, Word h, Word i, Word j, Word k,
           Word l, Word m, Word n, Word o, Word p) {
    Word sum = 0;
    Word weight = 1;
    for (const Word word : {a, b, c, d, e, f, g, h, i, j, k, l, m, n, o, p}) sum += weight++ * word;
    return sum;
}

TEST(CallIntoTheModule, PassesTwelveWordsOnTheStack) {
    EXPECT_EQ(callable(weigh)(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16),
              weigh(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16));
}

TEST(CallIntoTheModule, HasOneAddressForEachFunction) {
    EXPECT_EQ(callable(weigh), callable(weigh));
    EXPECT_NE(reinterpret_cast<const void*>(callable(weigh)),
              reinterpret_cast<const void*>(callable(changeR9)));
}

}  // namespace
}  // namespace quillet::macho
