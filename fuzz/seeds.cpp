// SPDX-License-Identifier: MIT
#include "fuzz/seeds.h"

#include <cstdint>

#include "tests/standin/plist/binary_property_list.h"

namespace quillet::standin {
namespace {

using namespace std::string_literals;
using Files = std::vector<std::string>;

std::string withEncoding(const std::string& encoding, const std::string& value) {
    return "<?xml version='1.0' encoding='" + encoding + "'?>" + value;
}

/// ASCII in units of `size` bytes, the high byte first or last, after a byte-order mark.
std::string inUnits(const std::string& text, std::size_t size, bool isHighFirst) {
    const auto unit = [&](std::uint64_t number) {
        const std::string bytes = bigEndian(number, size);
        return isHighFirst ? bytes : std::string{bytes.rbegin(), bytes.rend()};
    };
    std::string bytes = unit(0xFEFF);
    for (const char c : text) bytes += unit(static_cast<unsigned char>(c));
    return bytes;
}

Files encodings() {
    const std::string text = "<plist><string>a&lt;</string></plist>";
    Files files{"\xEF\xBB\xBF" + text};
    for (const std::size_t size : {2U, 4U}) {
        for (const bool isHighFirst : {true, false})
            files.push_back(inUnits(text, size, isHighFirst));
    }
    for (const char* const name : {"utf-8", "us-ascii", "ISO-8859-1", "windows-1252", "none"}) {
        files.push_back(withEncoding(name, "<string>\xE9\x80</string>"));
    }
    return files;
}

/// Each element, closed and empty, by itself and in a dictionary.
Files elements() {
    const Files values{"<true/>",
                       "<false></false>",
                       "<integer>-12</integer>",
                       "<integer>18446744073709551615</integer>",
                       "<integer>0x1F</integer>",
                       "<real>1.5e3</real>",
                       "<real>-infinity</real>",
                       "<real>nan</real>",
                       "<string/>",
                       "<string>b</string>",
                       "<data>QUI=</data>",
                       "<data/>",
                       "<date>-0001-02-03T04:05:06Z</date>",
                       "<array/>",
                       "<dict/>",
                       "<array><array><true/></array><dict><key/><string/></dict></array>",
                       "<dict><key>CF$UID</key><integer>7</integer></dict>"};
    Files files;
    for (const std::string& value : values) {
        files.push_back("<plist version=\"1.0\">" + value + "</plist>");
        std::string dictionary = "<dict>";
        for (const char* const key : {"a", "ringtone-volume"}) {
            dictionary.append("<key>").append(key).append("</key>").append(value);
        }
        files.push_back(dictionary + "</dict>");
    }
    return files;
}

/// What stands between tags and inside a text.
Files markup() {
    return {"<!DOCTYPE plist [<!ENTITY a \"b\">]><plist><true/></plist>",
            "<!-- a --><?b c?><plist a='b'\n><true /></plist >",
            "<string>a<!-- b -->c<?d?><![CDATA[<e>]]>f</string>",
            "<string>&amp;&lt;&gt;&quot;&apos;&#65;&#x1F600;&#xD800;</string>",
            "<string>\t\r\n\x01\xC3\xA9\xED\xA0\x80</string>"};
}

/// Numbers and texts of each size.
Files objects() {
    Files files;
    for (unsigned size = 0; size <= 4; ++size) {
        files.push_back(binaryFileOf(static_cast<char>(0x10U + size) +
                                     bigEndian(0xFFFFFFFFFFFFFFF6U, std::size_t{1} << size)));
    }
    for (unsigned size = 1; size <= 16; ++size) {
        files.push_back(binaryFileOf(static_cast<char>(0x7FU + size) + bigEndian(9, size)));
    }
    for (const char* const object : {"\x08", "\x09", "\x0F"}) files.push_back(binaryFileOf(object));
    files.push_back(binaryFileOf("\x22\x3F\xC0\x00\x00"s));
    for (const unsigned kind : {0x2U, 0x3U}) {
        files.push_back(binaryFileOf(marker(kind, 3) + "\x41\x9D\x00\x00\x00\x00\x00\x01"s));
    }
    for (const std::size_t count : {0U, 1U, 14U, 15U, 300U}) {
        files.push_back(binaryFileOf(marker(0x4, count) + std::string(count, '\x80')));
        files.push_back(binaryFileOf(asciiObject(std::string(count, 'a'))));
        files.push_back(binaryFileOf(asciiObject(std::string(count, '\xE9'))));
        files.push_back(binaryFileOf(marker(0x6, count) + std::string(2 * count, '\xD8')));
    }
    return files;
}

/// One dictionary with an array, with each size of offsets and references and each version.
Files layouts() {
    Files files;
    for (std::size_t size = 1; size <= 16; ++size) {
        BinaryPropertyList file{{dictionaryObject({1, 2}, {3, 1}), asciiObject("ringtone-volume"),
                                 "\x61\x00\xE9"s, arrayObject({1, 4, 4}), "\xD0"}};
        file.offsetSize = size;
        files.push_back(file.bytes());
        file.offsetSize = 2;
        file.referenceSize = size;
        file.objects[0] = dictionaryObject({1, 2}, {3, 1}, size);
        file.objects[3] = arrayObject({1, 4, 4}, size);
        files.push_back(file.bytes());
        files.push_back(file.bytes());
        files.back()[7] = static_cast<char>('0' + size);
    }
    return files;
}

Files numbers() {
    return {"1",
            "-1.5e3",
            " +.5E-7x",
            "\t\n\v\f\r00012",
            "Yes",
            "+0true",
            "1e400",
            "1e-400",
            "340282356779733661637539395458142568447",
            ".",
            "e5",
            "nan",
            "0x10",
            "\xFF\xFF\xFF\xFF\xFF\xFF\xEF\x47"s};
}

struct Family {
    const char* name;
    Files (*files)();
};

constexpr Family families[] = {{"encoding", encodings}, {"element", elements}, {"markup", markup},
                               {"object", objects},     {"layout", layouts},   {"number", numbers}};

}  // namespace

std::vector<Seed> seeds() {
    std::vector<Seed> all;
    for (const auto& [name, files] : families) {
        int number = 0;
        for (std::string& bytes : files()) {
            all.push_back({name + "-"s + std::to_string(number++), std::move(bytes)});
        }
    }
    return all;
}

}  // namespace quillet::standin
