// SPDX-License-Identifier: MIT
#include "platform/standin/plist/property_list.h"
#include "tests/readers/reader.h"

namespace quillet::test {

namespace {

struct Teller {
    std::string operator()(bool flag) const { return flag ? "true" : "false"; }
    std::string operator()(std::int64_t number) const { return std::to_string(number); }
    std::string operator()(std::uint64_t number) const { return std::to_string(number); }
    std::string operator()(double number) const { return toldReal(number); }
    std::string operator()(const std::string& text) const {
        return toldText('s', text.data(), text.size());
    }
    std::string operator()(const standin::Data& data) const {
        return toldText('d', data.bytes.data(), data.bytes.size());
    }
    std::string operator()(standin::Date date) const { return toldDate(date.seconds); }
    std::string operator()(standin::UID uid) const { return "u" + std::to_string(uid.number); }
    std::string operator()(const standin::Array& array) const {
        std::vector<std::string> elements;
        for (const auto& element : array.elements()) elements.push_back(std::visit(*this, element));
        return toldArray(elements);
    }
    std::string operator()(const standin::Dictionary& dictionary) const {
        std::vector<std::pair<std::string, std::string>> entries;
        for (const auto& [key, value] : dictionary.entries()) {
            entries.emplace_back((*this)(key), std::visit(*this, value));
        }
        return toldDictionary(std::move(entries));
    }
};

}  // namespace

std::string reading(const std::string& bytes) {
    const auto value = standin::readPropertyList(bytes);
    return value ? std::visit(Teller{}, *value) : "-";
}

}  // namespace quillet::test
