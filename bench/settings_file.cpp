// SPDX-License-Identifier: MIT
#include "bench/settings_file.h"

#include <algorithm>
#include <array>
#include <random>
#include <string>
#include <vector>

#include "platform/standin/plist/property_list.h"

namespace quillet::bench {
namespace {

using standin::Array;
using standin::Data;
using standin::Date;
using standin::Dictionary;
using standin::Entry;
using standin::Value;

constexpr std::array words{"icon",    "list",    "display", "name",   "state",  "volume",
                           "bundle",  "badge",   "launch",  "last",   "used",   "session",
                           "version", "cache",   "setting", "screen", "folder", "page",
                           "dock",    "weather", "clock",   "camera", "photos", "health"};

class Inventor {
public:
    explicit Inventor(std::uint64_t seed) : random_{seed} {}

    std::uint64_t below(std::uint64_t limit) { return random_() % limit; }

    std::string key() {
        std::string key = "SB";
        for (int i = 0; i < 2; ++i) {
            key += word();
            key[key.size() - 1] = static_cast<char>(key.back() & ~0x20);
        }
        return key + std::to_string(below(100000));
    }

    Value value() {
        const std::uint64_t kind = below(10);
        if (kind < 6) return single();
        if (kind < 8) return icons();
        if (kind == 8) return pages();
        return applications();
    }

private:
    std::string word() { return words[below(words.size())]; }

    std::string identifier() {
        return "com.example." + word() + '.' + word() + std::to_string(below(1000));
    }

    std::string text() {
        switch (below(8)) {
            case 0:
                return "/var/mobile/Library/" + word() + '/' + identifier() + ".png";
            case 1:
                return "Caf\u00E9 Z\u00FCrich \u2013 " + word();
            case 2:
                return word() + " & " + word() + " <" + word() + ">";
            case 3:
                return identifier();
            default:
                return word() + ' ' + word() + ' ' + word() + ' ' + word();
        }
    }

    Value single() {
        switch (below(10)) {
            case 0:
            case 1:
            case 2:
                return text();
            case 3:
            case 4:
                return below(2) == 0;
            case 5:
            case 6:
                return static_cast<std::int64_t>(below(1000));
            case 7:
                return static_cast<double>(below(1000000)) / 1000;
            case 8:
                return Date{static_cast<double>(below(700000000))};
            default:
                return Data{std::string(below(80), static_cast<char>(below(256)))};
        }
    }

    Value icons() {
        std::vector<Value> list;
        for (std::uint64_t i = 2 + below(16); i > 0; --i) list.emplace_back(identifier());
        return Array{list};
    }

    Value pages() {
        std::vector<Value> list;
        for (std::uint64_t i = 1 + below(4); i > 0; --i) list.push_back(icons());
        return Array{list};
    }

    Value record() {
        std::vector<Entry> entries;
        for (std::uint64_t i = 3 + below(6); i > 0; --i) entries.push_back({key(), single()});
        if (below(10) == 0) entries.push_back({"ring-vibrate", true});
        if (below(10) == 0) entries.push_back({"silent-vibrate", true});
        return Dictionary{entries};
    }

    Value applications() {
        std::vector<Entry> entries;
        for (std::uint64_t i = 1 + below(12); i > 0; --i)
            entries.push_back({identifier(), record()});
        return Dictionary{entries};
    }

    std::mt19937_64 random_;
};

}  // namespace

standin::Dictionary settings(std::size_t size, std::uint64_t seed) {
    Inventor inventor{seed};
    std::vector<Entry> entries{{"ring-vibrate", true}, {"silent-vibrate", true}};
    const std::size_t frame = standin::writePropertyList(Dictionary{}).size();
    for (std::size_t written = 330; written < size;) {
        Entry entry{inventor.key(), inventor.value()};
        written += standin::writePropertyList(Dictionary{{entry}}).size() - frame;
        entries.push_back(std::move(entry));
    }
    std::sort(entries.begin(), entries.end(),
              [](const Entry& a, const Entry& b) { return a.key < b.key; });
    return Dictionary{entries};
}

}  // namespace quillet::bench
