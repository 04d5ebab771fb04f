// SPDX-License-Identifier: MIT
//
// Writes files for a fuzzer to begin with into a folder: all kinds of values in both forms, every
// encoding, and the hostile shapes.
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "tests/bounds/hostile_shapes.h"
#include "tests/standin/plist/binary_property_list.h"

namespace {

using namespace quillet::standin;
using namespace std::string_literals;

std::string everyKindInXML() {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?><!DOCTYPE plist><plist version=\"1.0\"><dict>"
           "<key>a&amp;</key><string>b<![CDATA[c]]>&#xE9;\xC3\xA9</string><key>d</key><array>"
           "<integer>-12</integer><real>1.5e3</real><true/><false/><data>QUI=</data></array>"
           "<!-- e --><key>f</key><date>-0001-02-03T04:05:06Z</date><key>g</key>"
           "<dict><key>CF$UID</key><integer>7</integer></dict></dict></plist>";
}

std::string everyKindInBinary() {
    return BinaryPropertyList{{dictionaryObject({1, 2}, {3, 4}), asciiObject("k"), "\x61\x00\xE9"s,
                               arrayObject({5, 6, 7, 8, 9, 10, 11}), "\xD0", "\x09", "\x08",
                               "\x10\x07", "\x22\x3F\xC0\x00\x00"s, "\x33"s + std::string(8, '\0'),
                               "\x42\x01\x02", "\x80\x05"}}
        .bytes();
}

std::string inUTF16(const std::string& text) {
    std::string bytes = "\xFE\xFF";
    for (const char c : text) bytes += {'\0', c};
    return bytes;
}

std::vector<std::string> seeds() {
    std::vector<std::string> files{
        everyKindInXML(), everyKindInBinary(), inUTF16("<plist><string>a&lt;</string></plist>"),
        "<?xml version='1.0' encoding='windows-1252'?><string>\x80</string>",
        "<?xml version='1.0' encoding='ISO-8859-1'?><string>\xE9</string>"};
    for (const HostileShape& shape : hostileShapes(10000)) files.push_back(shape.bytes);
    return files;
}

}  // namespace

int main(int count, char** arguments) {
    if (count != 2) {
        std::fprintf(stderr, "usage: property_list_seeds FOLDER\n");
        return EXIT_FAILURE;
    }
    const std::filesystem::path folder{arguments[1]};
    std::filesystem::create_directories(folder);
    int number = 0;
    for (const std::string& bytes : seeds()) {
        std::ofstream file{folder / ("seed-" + std::to_string(number++)), std::ios::binary};
        if (!(file << bytes)) return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}
