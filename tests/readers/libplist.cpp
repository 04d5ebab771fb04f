// SPDX-License-Identifier: MIT
#include <plist/plist.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "tests/readers/reader.h"

namespace quillet::test {

namespace {

std::string told(plist_t node);

std::string toldItems(plist_t array) {
    std::vector<std::string> elements;
    for (std::uint32_t i = 0; i < plist_array_get_size(array); ++i) {
        elements.push_back(told(plist_array_get_item(array, i)));
    }
    return toldArray(elements);
}

std::string toldEntries(plist_t dictionary) {
    std::vector<std::pair<std::string, std::string>> entries;
    plist_dict_iter next = nullptr;
    plist_dict_new_iter(dictionary, &next);
    for (;;) {
        char* key = nullptr;
        plist_t value = nullptr;
        plist_dict_next_item(dictionary, next, &key, &value);
        if (value == nullptr) break;
        entries.emplace_back(toldText('s', key, std::strlen(key)), told(value));
        std::free(key);
    }
    std::free(next);
    return toldDictionary(std::move(entries));
}

std::string toldInteger(plist_t node) {
    std::uint64_t number = 0;
    plist_get_uint_val(node, &number);
    // Its binary form alone tells the two ranges apart: by the size.
    char* bytes = nullptr;
    std::uint32_t size = 0;
    plist_to_bin(node, &bytes, &size);
    const bool isUnsigned = size > 8 && bytes[8] == 0x14;
    plist_to_bin_free(bytes);
    return isUnsigned ? std::to_string(number) : std::to_string(static_cast<std::int64_t>(number));
}

std::string toldSeconds(plist_t node) {
    std::int32_t seconds = 0;
    std::int32_t microseconds = 0;
    plist_get_date_val(node, &seconds, &microseconds);
    return toldDate(seconds);
}

std::string told(plist_t node) {
    std::uint8_t flag = 0;
    double real = 0;
    std::uint64_t number = 0;
    const char* text = nullptr;
    switch (plist_get_node_type(node)) {
        case PLIST_BOOLEAN:
            plist_get_bool_val(node, &flag);
            return flag != 0 ? "true" : "false";
        case PLIST_UINT:
            return toldInteger(node);
        case PLIST_REAL:
            plist_get_real_val(node, &real);
            return toldReal(real);
        case PLIST_STRING:
            text = plist_get_string_ptr(node, &number);
            return toldText('s', text, number);
        case PLIST_DATA:
            text = plist_get_data_ptr(node, &number);
            return toldText('d', text, number);
        case PLIST_DATE:
            return toldSeconds(node);
        case PLIST_UID:
            plist_get_uid_val(node, &number);
            return "u" + std::to_string(number);
        case PLIST_ARRAY:
            return toldItems(node);
        case PLIST_DICT:
            return toldEntries(node);
        default:
            return "?";
    }
}

}  // namespace

std::string reading(const std::string& bytes) {
    plist_t node = nullptr;
    plist_from_memory(bytes.data(), static_cast<std::uint32_t>(bytes.size()), &node);
    return node == nullptr ? "-" : told(node);
}

}  // namespace quillet::test
