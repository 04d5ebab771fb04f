// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <filesystem>
#include <random>
#include <stdexcept>
#include <string>

#include "tests/stress/service/ground.h"
#include "tests/stress/service/parts.h"

namespace quillet::test {

namespace fs = std::filesystem;
using standin::NotificationTable;

namespace {

/// Changes some of a file's bytes, or its length.
void damage(std::string& bytes, std::mt19937& random) {
    if (random() % 8 == 0) bytes.resize(random() % (2 * bytes.size()));
    for (auto changes = random() % 4; changes > 0 && !bytes.empty(); --changes) {
        const std::size_t at = random() % bytes.size();
        const std::size_t count = std::min<std::size_t>(1 + random() % 300, bytes.size() - at);
        const bool isZero = random() % 2 == 0;
        std::generate_n(bytes.begin() + static_cast<std::ptrdiff_t>(at), count,
                        [&] { return isZero ? '\0' : static_cast<char>(random()); });
    }
}

/// What a table whose file holds these bytes does: serves, or is refused.
bool isServed(const fs::path& path, const std::string& bytes) {
    writeText(path, bytes);
    try {
        NotificationTable table{path};
        if (table.findOrAdd("new") == nullptr) throw std::logic_error("no room");
        table.post("new");
        const NotificationTable again{path};
        return true;
    } catch (const std::runtime_error&) {
        return false;
    }
}

}  // namespace

bool damageFiles(const ServiceExtent& extent) {
    const Ground ground;
    {
        NotificationTable table{ground.table()};
        for (int i = 0; i < 100; ++i) table.findOrAdd("name." + std::to_string(i));
    }
    const std::string sound = readText(ground.table());
    std::mt19937 random{1};
    int tried = 0;
    int served = 0;
    for (const double end = realNow() + extent.seconds; realNow() < end; ++tried) {
        std::string bytes = sound;
        damage(bytes, random);
        served += isServed(ground.table(), bytes);
    }
    std::printf("%d damaged tables: %d refused, the rest serve; ", tried, tried - served);
    return tried > served && served > 0;
}

}  // namespace quillet::test
