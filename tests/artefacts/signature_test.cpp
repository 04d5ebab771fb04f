// SPDX-License-Identifier: MIT
//
// The code signature of the built modules, read byte by byte: a list of parts, big-endian, of which
// two are code directories. A directory holds one hash for each 4096 bytes before the signature.

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <map>
#include <sstream>
#include <stdexcept>

#include "tests/artefacts/built.h"

namespace quillet::test {
namespace {

/// A part of the signature: its kind in the list, and its bytes.
using Parts = std::map<uint32_t, std::string>;

uint32_t big32(const std::string& bytes, size_t at) {
    uint32_t value = 0;
    for (const char byte : bytes.substr(at, 4)) value = value << 8 | static_cast<uint8_t>(byte);
    return value;
}

class Signature : public testing::TestWithParam<std::string> {
protected:
    /// The number after the first "<name> " that follows the code signature's load command.
    static size_t commandField(const std::string& name) {
        const std::string commands =
            textOf("llvm-objdump-14 --macho --private-headers " + builtModule(GetParam()));
        const size_t command = commands.find("cmd LC_CODE_SIGNATURE");
        if (command == std::string::npos) throw std::runtime_error("not signed");
        return std::stoul(commands.substr(commands.find(name + " ", command) + name.size()));
    }

    static std::string moduleBytes() {
        std::ifstream file(builtModule(GetParam()), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    static Parts parts() {
        const std::string signature = moduleBytes().substr(commandField("dataoff"));
        Parts found;
        for (uint32_t i = 0; i < big32(signature, 8); ++i) {
            const uint32_t at = big32(signature, 12 + 8 * i + 4);
            found[big32(signature, 12 + 8 * i)] = signature.substr(at, big32(signature, at + 4));
        }
        return found;
    }

    /// What `tool` makes of each page before the signature, in hexadecimal digits.
    static std::string pageHashes(const std::string& tool) {
        const std::string lines =
            textOf("head -c " + std::to_string(commandField("dataoff")) + " " +
                   builtModule(GetParam()) + " | split -b 4096 --filter=" + tool);
        std::string hashes;
        for (const std::string& hash : column(lines, 0)) {
            if (hash != "-") hashes += hash;
        }
        return hashes;
    }

    static void expectDirectory(const std::string& directory, char hashType, uint32_t hashSize,
                                const std::string& tool) {
        ASSERT_GE(directory.size(), 88U);
        EXPECT_EQ(big32(directory, 0), 0xfade0c02);
        EXPECT_EQ(big32(directory, 12), 2U) << "flags: ad hoc";
        EXPECT_EQ(big32(directory, 32), commandField("dataoff")) << "bytes covered";
        EXPECT_EQ(directory.substr(36, 4), std::string({char(hashSize), hashType, 0, 12}));
        EXPECT_STREQ(directory.c_str() + big32(directory, 20), "Quillet");
        std::ostringstream hashes;
        hashes << std::hex;
        for (size_t i = big32(directory, 16); i < directory.size(); ++i) {
            const auto byte = static_cast<uint8_t>(directory[i]);
            hashes << (byte < 16 ? "0" : "") << int{byte};
        }
        EXPECT_EQ(hashes.str().size(), big32(directory, 28) * hashSize * 2);
        EXPECT_EQ(hashes.str(), pageHashes(tool));
    }
};

INSTANTIATE_TEST_SUITE_P(Built, Signature, testing::Values("arm64", "x86_64"),
                         [](const auto& instance) { return instance.param; });

TEST_P(Signature, EndsTheModuleAndSaysItsOwnSize) {
    const std::string bytes = moduleBytes();
    const size_t start = commandField("dataoff");
    EXPECT_EQ(start + commandField("datasize"), bytes.size());
    EXPECT_EQ(big32(bytes, start), 0xfade0cc0);
    EXPECT_EQ(start + big32(bytes, start + 4), bytes.size());
}

TEST_P(Signature, HasSha1HashesOfEveryPageForSystemsBefore11) {
    expectDirectory(parts()[0], 1, 20, "sha1sum");
}

TEST_P(Signature, HasSha256HashesOfEveryPageForSystemsFrom11) {
    expectDirectory(parts()[0x1000], 2, 32, "sha256sum");
}

TEST_P(Signature, HasNoOtherPart) { EXPECT_EQ(parts().size(), 2U); }

}  // namespace
}  // namespace quillet::test
