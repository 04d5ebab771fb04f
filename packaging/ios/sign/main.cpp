// SPDX-License-Identifier: MIT
#include <cstdio>
#include <exception>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

#include "packaging/ios/sign/signature.h"

namespace {

std::string contentsOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::string bytes{std::istreambuf_iterator<char>(file), {}};
    if (!file) throw std::runtime_error("cannot be read");
    return bytes;
}

void write(const std::string& path, const std::string& bytes) {
    std::ofstream file(path, std::ios::binary);
    file << bytes;
    file.close();
    if (!file) throw std::runtime_error("cannot be written");
}

}  // namespace

/// Signs a module in its place. 0 when it is done, 1 with a line that says why not, 2 for a wrong
/// call.
int main(int count, char** arguments) {
    if (count != 3) {
        std::fputs("usage: sign MODULE IDENTIFIER\n", stderr);
        return 2;
    }
    const char* const path = arguments[1];
    try {
        write(path, quillet::sign::signedModule(contentsOf(path), arguments[2]));
    } catch (const std::exception& error) {
        std::fprintf(stderr, "sign: %s %s\n", path, error.what());
        return 1;
    }
    return 0;
}
