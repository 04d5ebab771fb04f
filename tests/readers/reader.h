// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace quillet::test {

/// What the bytes of a property list read as, by one of the readers that script/readers compares,
/// in one line: "-" when they are refused; true, false, an integer's digits; or a letter and what
/// it is of: r a real, s a string and d data in hexadecimal digits, t a date's whole seconds since
/// 2001, u an identifier, […] an array, {…} a dictionary in the order of its keys' digits.
std::string reading(const std::string& bytes);

/// For the readers, what a part reads as.
std::string toldReal(double number);
std::string toldDate(double seconds);
std::string toldText(char kind, const char* bytes, std::size_t size);
std::string toldArray(const std::vector<std::string>& elements);
std::string toldDictionary(std::vector<std::pair<std::string, std::string>> entries);

}  // namespace quillet::test
