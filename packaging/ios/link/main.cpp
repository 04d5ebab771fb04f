// SPDX-License-Identifier: MIT
//
// usage: link OBJECT MODULE EXPORTS STUB… [-weak STUB…]
//
// Links one object for armv7 into MODULE, which offers the symbols named in EXPORTS and finds the
// others in the libraries that the stubs describe. See docs/armv7-link.md.

#include <cstdio>
#include <exception>
#include <fstream>
#include <iterator>
#include <span>

#include "packaging/ios/link/bytes.h"
#include "packaging/ios/link/module_writer.h"

namespace quillet::linker {

namespace {

std::string readFile(const std::string& path) {
    std::ifstream file{path, std::ios::binary};
    if (!file) refuse(path + " cannot be read");
    return {std::istreambuf_iterator<char>{file}, {}};
}

void writeFile(const std::string& path, const std::string& bytes) {
    std::ofstream file{path, std::ios::binary};
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    file.close();
    if (!file) refuse(path + " cannot be written");
}

void run(std::span<char*> arguments) {
    if (arguments.size() < 4) refuse("usage: link OBJECT MODULE EXPORTS STUB… [-weak STUB…]");
    std::vector<StubLibrary> libraries;
    bool isWeak = false;
    for (const std::string argument : arguments.subspan(3)) {
        if (argument == "-weak") {
            isWeak = true;
        } else {
            libraries.push_back(readStubLibrary(readFile(argument)));
            libraries.back().isWeak = isWeak;
        }
    }
    writeFile(arguments[1], linkModule(readFile(arguments[0]), readFile(arguments[2]), libraries));
}

}  // namespace

}  // namespace quillet::linker

int main(int count, char** arguments) {
    try {
        quillet::linker::run(std::span{arguments, static_cast<std::size_t>(count)}.subspan(1));
    } catch (const std::exception& error) {
        std::fprintf(stderr, "link: %s\n", error.what());
        return 1;
    }
}
