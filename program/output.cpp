// SPDX-License-Identifier: MIT
#include "program/output.h"

#include <iostream>
#include <stdexcept>

namespace quillet {

void finishOutput() {
    if (!std::cout.flush()) throw std::runtime_error("standard output cannot be written");
}

void print(const std::string& text) {
    std::cout << text;
    finishOutput();
}

}  // namespace quillet
