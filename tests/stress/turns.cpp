// SPDX-License-Identifier: MIT
#include "tests/stress/turns.h"

#include <memory>
#include <string>
#include <vector>

#include "tests/stress/commands.h"
#include "tests/stress/companion.h"
#include "tests/stress/laboratory.h"

namespace quillet::test {

namespace fs = std::filesystem;

namespace {

/// Flips of one device, by so many hosts at once.
class Flips {
public:
    Flips(const Laboratory& laboratory, int hosts, Tally& tally)
        : laboratory_{laboratory},
          name_{"rounds of " + std::to_string(hosts) + " flips at once"},
          tally_{tally} {
        for (int host = 0; host < hosts; ++host) {
            const char* const state = host % 2 == 0 ? "off" : "on";
            hosts_.push_back(std::make_unique<Companion>(laboratory.startOf(
                {"--machine", "iPod5,1", "flip", state}, "host" + std::to_string(host))));
        }
        tally_.tried(name_);
    }

    void expectNothingLost() {
        for (const auto& host : hosts_) expectSuccess(*host);
        const DeviceFiles files = laboratory_.look();
        expect(files.settings == laboratory_.before().settings, "lose SpringBoard's settings", "");
        expect(files.choices && files.choices->find("ios-vibrate-pattern").has_value(),
               "lose the preferences", "");
        expect(files.hardware && files.hardware->find("ringer-muted").has_value(),
               "lose the hardware's state", "");
    }

private:
    void expectSuccess(Companion& host) {
        const bool ends = host.ends();
        if (!ends) host.kill();
        const std::string errors = host.errors();
        expect(ends, "have one of them wait for ever", errors);
        expect(!ends || host.status() == 0, "have one of them fail", errors);
        const bool hasWaited = errors.find("waiting for another flip") != std::string::npos;
        tally_.tried("flips that had to wait for their turn", hasWaited ? 1 : 0);
    }

    void expect(bool holds, const std::string& wrong, const std::string& errors) {
        if (!holds) tally_.fell(name_ + ' ' + wrong, "the errors: " + errors);
    }

    const Laboratory& laboratory_;
    std::string name_;
    Tally& tally_;
    std::vector<std::unique_ptr<Companion>> hosts_;
};

}  // namespace

Tally tryTurns(Extent extent, const fs::path& folder) {
    // One job has eight pairs, and eight hosts once.
    const std::size_t jobs = extent == Extent::brief ? 2 : extent == Extent::full ? 25 : 2500;
    return share(jobs, folder, [&](std::size_t /*job*/, const fs::path& place, Tally& tally) {
        const Laboratory laboratory{commandsThatWrite(Extent::brief).back(), place};
        for (const int hosts : {2, 2, 2, 2, 2, 2, 2, 2, 8}) {
            if (!isTimeOver()) Flips{laboratory, hosts, tally}.expectNothingLost();
        }
    });
}

}  // namespace quillet::test
