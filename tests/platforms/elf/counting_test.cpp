// SPDX-License-Identifier: MIT
//
// Counts of objects where none waits for the end of a call in a pool.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

#include "platform/standin/runtime/instance.h"
#include "tests/support/phone.h"

namespace quillet::test {
namespace {

TEST(ElfCounting, ReleasesTheFilesDictionaryBeforeTheVolumeIsZeroed) {
    Phone phone;
    auto* const turnOff = phone.exported<void()>("turnRingerVolumeOff");
    std::vector<int> counts;
    phone.write(preferencesPath, standin::Dictionary{});
    phone.device().trace.setSink([&](const standin::TraceRecord& record) {
        if (record.operation == "defaultManager" || record.operation == "setVolumeTo:forCategory:")
            counts.push_back(standin::Instance::live());
    });
    turnOff();  // The platform's shared objects come to be.
    counts.clear();
    turnOff();
    ASSERT_EQ(counts.size(), 2U);
    EXPECT_EQ(counts[1], counts[0] + 1) << "only the string \"Ringtone\" is alive";
}

}  // namespace
}  // namespace quillet::test
