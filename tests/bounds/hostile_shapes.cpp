// SPDX-License-Identifier: MIT
#include "tests/bounds/hostile_shapes.h"

#include <cstddef>
#include <cstdint>

#include "tests/standin/plist/binary_property_list.h"

namespace quillet::standin {
namespace {

constexpr std::size_t depth = 507;

std::string repeated(const std::string& unit, std::size_t size) {
    std::string text;
    while (text.size() < size) text += unit;
    return text;
}

std::string manyTimes(const std::string& unit, std::size_t count) {
    return repeated(unit, count * unit.size());
}

/// As deep as may be, so that each line of the XML form begins with hundreds of tabs.
std::string deepXML(const std::string& content) {
    return manyTimes("<array>", depth) + content + manyTimes("</array>", depth);
}

/// The same, the innermost array being references to the last object.
std::string deepBinary(std::size_t references, const std::string& object) {
    BinaryPropertyList file;
    file.offsetSize = 4;
    file.referenceSize = 2;
    for (std::uint64_t i = 1; i <= depth; ++i) file.objects.push_back(arrayObject({i}, 2));
    file.objects.push_back(arrayObject(std::vector<std::uint64_t>(references, depth + 1), 2));
    file.objects.push_back(object);
    return file.bytes();
}

/// Arrays each of which holds the next one `width` times.
std::string doubling(std::size_t width, std::size_t levels, std::size_t padding) {
    BinaryPropertyList file;
    file.offsetSize = 4;
    for (std::uint64_t i = 1; i <= levels; ++i) {
        file.objects.push_back(arrayObject(std::vector<std::uint64_t>(width, i)));
    }
    file.objects.push_back("\x09");
    file.objects.push_back(asciiObject(std::string(padding, 'a')));
    return file.bytes();
}

/// A dictionary whose keys are the two objects in turn, all references to an empty array.
std::string alternatingKeys(std::size_t count, const std::string& one, const std::string& other) {
    std::vector<std::uint64_t> keys;
    for (std::size_t i = 0; i < count; ++i) keys.push_back(1 + i % 2);
    BinaryPropertyList file{
        {dictionaryObject(keys, std::vector<std::uint64_t>(count, 3)), one, other, "\xA0"}};
    file.offsetSize = 4;
    return file.bytes();
}

std::string sharedReferences(std::size_t count, const std::string& object) {
    BinaryPropertyList file{{arrayObject(std::vector<std::uint64_t>(count, 1)), object}};
    file.offsetSize = 4;
    return file.bytes();
}

/// Strings that begin at every sixth byte and reach to the last one.
std::string overlappingStrings(std::size_t size) {
    const std::size_t count = size / 16;
    std::string strings;
    while (strings.size() < 6 * count) {
        strings += "\x5F\x12" + bigEndian(6 * (count - 1) - strings.size(), 4);
    }
    return strings;
}

/// A file of `objects`, the first of which refers to `count` objects that begin `step` bytes after
/// one another.
std::string manyOffsets(std::size_t count, std::size_t step, const std::string& objects) {
    std::vector<std::uint64_t> numbers;
    for (std::size_t i = 1; i <= count; ++i) numbers.push_back(i);
    const std::string array = arrayObject(numbers, 3);
    const std::size_t header = 8;
    const std::size_t start = header + array.size();
    std::string offsets = bigEndian(header, 4);
    for (std::size_t i = 0; i < count; ++i) offsets += bigEndian(start + i * step, 4);
    return "bplist00" + array + objects + offsets + std::string(6, '\0') + "\x04\x03" +
           bigEndian(count + 1, 8) + bigEndian(0, 8) + bigEndian(start + objects.size(), 8);
}

/// Dictionaries in one another, each of which loses an entry and has what the next one holds to be
/// moved.
std::string duplicatesInOneAnother(std::size_t references) {
    const std::size_t levels = 250;
    BinaryPropertyList file;
    file.offsetSize = 4;
    for (std::uint64_t i = 1; i <= levels; ++i) {
        file.objects.push_back(dictionaryObject({252, 251, 252}, {253, i, 253}));
    }
    file.objects.push_back(arrayObject(std::vector<std::uint64_t>(references, 253)));
    file.objects.insert(file.objects.end(), {asciiObject("a"), asciiObject("b"), "\x09"});
    return file.bytes();
}

std::string duplicatesInOneAnotherInXML(std::size_t size) {
    const std::string flags = "<array><true/><true/></array>";
    return manyTimes("<dict><key>b</key><true/><key>a</key>", depth) + "<array>" +
           repeated("<true/>", size) + "</array>" +
           manyTimes("<key>b</key>" + flags + "</dict>", depth);
}

std::string utf16Object(std::size_t units) {
    std::string bytes;
    for (std::size_t i = 0; i < units; ++i) bytes += "\x20\xAC";
    return marker(0x6, units) + bytes;
}

/// Keys in no order, each of them twice.
std::string duplicateKeys(std::size_t count) {
    std::string text = "<dict>";
    for (std::size_t i = 0; i < count; ++i) {
        text += "<key>" + std::to_string(i * 7919 % (count / 2)) + "</key><true/>";
    }
    return text + "</dict>";
}

std::vector<HostileShape> binaryShapes(std::size_t size) {
    const std::size_t half = size / 2;
    const std::string controls(half, '\x1F');
    const std::string longKey(half, 'k');
    return {
        {"deep shared control characters", deepBinary(half / 2, asciiObject(controls))},
        {"deep shared data", deepBinary(half / 2, marker(0x4, half) + controls)},
        {"deep shared flags", deepBinary(half, "\x09")},
        {"deep shared dictionaries", deepBinary(half, "\xD0")},
        {"two to the sixtieth", doubling(2, 60, size)},
        {"ten to the sixtieth", doubling(10, 60, size)},
        {"small unfolding", doubling(14, 4, 0)},
        {"equal long keys", alternatingKeys(half / 4, asciiObject(longKey), asciiObject(longKey))},
        {"nearly equal long keys",
         alternatingKeys(half / 4, asciiObject(longKey + 'a'), asciiObject(longKey + 'b'))},
        {"one long key", alternatingKeys(half / 4, asciiObject(longKey), asciiObject("k"))},
        {"shared empty arrays", sharedReferences(size, "\xA0")},
        {"shared long string", sharedReferences(half, asciiObject(std::string(half, 'a')))},
        {"shared long UTF-16", sharedReferences(half, utf16Object(half / 2))},
        {"shared long Latin-1", sharedReferences(half, asciiObject(std::string(half, '\xE9')))},
        {"long UTF-16", BinaryPropertyList{{utf16Object(half)}, 4}.bytes()},
        {"many objects",
         BinaryPropertyList{std::vector<std::string>(half / 2, "\xA0"), 4, 3}.bytes()},
        {"many numbers for one string",
         manyOffsets(half / 8, 0, asciiObject(std::string(half, 'a') + "\xC3\xA9"))},
        {"many numbers for one string of ASCII",
         manyOffsets(half / 8, 0, asciiObject(std::string(half, 'a')))},
        {"many numbers for overlapping strings",
         manyOffsets(size / 16, 6, overlappingStrings(size))},
        {"duplicate keys in one another", duplicatesInOneAnother(size)},
    };
}

std::vector<HostileShape> xmlShapes(std::size_t size) {
    const std::string windows = "<?xml version='1.0' encoding='windows-1252'?><string>";
    return {
        {"deep flags", deepXML(repeated("<true/>", size))},
        {"deep empty arrays", deepXML(repeated("<array/>", size))},
        {"deep identifiers",
         deepXML(repeated("<dict><key>CF$UID</key><integer>1</integer></dict>", size))},
        {"deep data", deepXML("<data>" + repeated("AAAA", size) + "</data>")},
        {"deep short data", deepXML(repeated("<data>AA</data>", size))},
        {"control characters", "<string>" + repeated("&#1;", size) + "</string>"},
        {"carriage returns", "<string>" + repeated("\r", size) + "</string>"},
        {"markup characters", "<string>" + repeated("<![CDATA[&<>]]>", size) + "</string>"},
        {"small arrays", "<array>" + repeated("<array><true/></array>", size) + "</array>"},
        {"empty keys", "<dict>" + repeated("<key/><true/>", size) + "</dict>"},
        {"duplicate keys", duplicateKeys(size / 24)},
        {"duplicate keys in one another, in XML", duplicatesInOneAnotherInXML(size)},
        {"unfinished arrays", repeated("<array>", size)},
        {"unfinished tags", repeated("<plist>", size)},
        {"comments in text", "<string>" + repeated("<!---->", size) + "</string>"},
        {"short reals", "<array>" + repeated("<real>1</real>", size) + "</array>"},
        {"characters that grow threefold", windows + std::string(size, '\x80') + "</string>"},
    };
}

}  // namespace

std::vector<HostileShape> hostileShapes(std::size_t size) {
    auto shapes = binaryShapes(size);
    for (HostileShape& shape : xmlShapes(size)) shapes.push_back(std::move(shape));
    return shapes;
}

}  // namespace quillet::standin
