// SPDX-License-Identifier: MIT
#include "platform/standin/device/device_facts.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "platform/standin/device/device.h"
#include "platform/standin/plist/property_list.h"
#include "tests/support/program.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/values.h"

namespace quillet::test {
namespace {

namespace fs = std::filesystem;
using standin::Array;
using standin::Data;
using standin::DeviceFacts;
using standin::Dictionary;
using standin::HostVariant;
using standin::Value;

class Facts : public testing::Test {
protected:
    fs::path folder() const { return folder_.path(); }
    fs::path file() const { return folder() / "device.plist"; }
    void write(const Value& value) const { writeText(file(), standin::writePropertyList(value)); }

private:
    TemporaryFolder folder_;
};

TEST_F(Facts, AreReadAsTheyWereWritten) {
    for (const std::string machine : {"iPod5,1", "iPad <&> 2", "iPod\xFF", "tab\t", "caf\u00e9"}) {
        const DeviceFacts facts = {machine, {HostVariant::Indicator::noInstance}};
        standin::writeFacts(file(), facts);
        EXPECT_EQ(standin::readFacts(file()), facts) << testing::PrintToString(machine);
    }
}

TEST_F(Facts, WithoutAFileAreThoseOfAPhone) {
    EXPECT_EQ(standin::readFacts(file()), DeviceFacts{});
    write(Dictionary{{"colour", std::string{"slate"}}});
    EXPECT_EQ(standin::readFacts(file()), DeviceFacts{}) << "what is not told is as by default";
}

TEST_F(Facts, ThatNoDeviceHasAreRefused) {
    const Value odd[] = {Dictionary{{"machine", std::string{}}},
                         Dictionary{{"machine", Array{}}},
                         Dictionary{{"machine", Data{std::string(256, 'x')}}},
                         Dictionary{{"host", std::string{"indicator=loud"}}},
                         Dictionary{{"host", true}},
                         Array{}};
    for (const Value& value : odd) {
        write(value);
        EXPECT_THROW(standin::readFacts(file()), std::runtime_error)
            << testing::PrintToString(value);
    }
    writeText(file(), "no property list");
    try {
        standin::readFacts(file());
        FAIL() << "read, though they are none";
    } catch (const std::runtime_error& error) {
        EXPECT_EQ(error.what(), file().string() +
                                    ": does not tell what the device is: line 1, column 1: text "
                                    "where a tag belongs");
    }
}

TEST_F(Facts, OfADeviceAreThoseOfTheProcessThatMadeIt) {
    const fs::path root = folder() / "root";
    EXPECT_EQ((standin::Device{{.root = root, .machine = "iPod5,1"}}.machine), "iPod5,1");
    EXPECT_EQ((standin::Device{{.root = root}}.machine), "iPod5,1");
    EXPECT_EQ((standin::Device{{.root = root, .machine = "iPad4,1"}}.machine), "iPad4,1");
    EXPECT_EQ((standin::Device{{.root = root}}.machine), "iPod5,1") << "as it was but for that one";
}

}  // namespace
}  // namespace quillet::test
