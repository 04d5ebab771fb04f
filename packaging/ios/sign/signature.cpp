// SPDX-License-Identifier: MIT
#include "packaging/ios/sign/signature.h"

#include <openssl/evp.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>
#include <utility>

#include "packaging/ios/sign/module.h"

namespace quillet::sign {
namespace {

// A signature is a list of blobs. Numbers are big-endian and have 4 bytes where nothing else is
// said; places are counted from the start of the blob.
//
//     0  fade0cc0 · bytes in all · 3 · three times: slot · place of the blob
//    36  slot 0     code directory with SHA-1 hashes
//        slot 2     requirements: fade0c01 · 12 · none
//        slot 1000  code directory with SHA-256 hashes
//
// A code directory of version 2.4:
//
//     0  fade0c02 · bytes in all · 00020400 · flags
//    16  place of page 0's hash · place of the identifier
//    24  special slots · pages · bytes that the pages cover
//    36  bytes of a hash (1) · its kind (1) · 0 (1) · the page size's power of two (1) · 0
//    44  not used: scatter · team · 0 · bytes covered in 64 bits (8)
//    64  the segment with the code, in the file: place (8) · size (8) · flags, of programs only (8)
//    88  identifier, ended by a zero byte
//        hashes of the special slots, the last slot first: requirements, property list
//        hashes of the pages
//
// A slot of zeros stands for something that is not there: nothing binds a module to a property
// list.
constexpr std::uint32_t signatureMagic = 0xfade0cc0;
constexpr std::uint32_t requirementsMagic = 0xfade0c01;
constexpr std::uint32_t codeDirectoryMagic = 0xfade0c02;
constexpr std::uint32_t codeDirectoryVersion = 0x00020400;
constexpr std::uint32_t codeDirectorySlot = 0;
constexpr std::uint32_t requirementsSlot = 2;
constexpr std::uint32_t alternateDirectorySlot = 0x1000;
constexpr std::uint32_t adHoc = 2;
constexpr std::uint32_t specialSlots = 2;
constexpr std::uint8_t pagePower = 12;
constexpr std::size_t identifierPlace = 88;

struct Hash {
    std::uint8_t kind;
    std::uint8_t size;
    const EVP_MD* (*function)();
};

constexpr Hash sha1 = {1, 20, EVP_sha1};
constexpr Hash sha256 = {2, 32, EVP_sha256};

template <typename Number>
std::string bigEndian(Number number) {
    std::string bytes;
    for (std::size_t i = sizeof number; i-- > 0;) {
        bytes.push_back(static_cast<char>(std::uint64_t{number} >> 8 * i));
    }
    return bytes;
}

template <typename... Numbers>
std::string all(Numbers... numbers) {
    return (bigEndian(numbers) + ...);
}

std::uint32_t size32(std::string_view bytes) { return static_cast<std::uint32_t>(bytes.size()); }

std::string hashOf(std::string_view bytes, const Hash& hash) {
    std::string digest(hash.size, '\0');
    auto* const to = reinterpret_cast<unsigned char*>(digest.data());
    if (EVP_Digest(bytes.data(), bytes.size(), to, nullptr, hash.function(), nullptr) != 1) {
        throw Refusal("cannot be hashed: the library lacks the function");
    }
    return digest;
}

std::string pageHashes(std::string_view code, const Hash& hash) {
    std::string hashes;
    for (; !code.empty(); code.remove_prefix(std::min<std::size_t>(code.size(), 1U << pagePower))) {
        hashes += hashOf(code.substr(0, 1U << pagePower), hash);
    }
    return hashes;
}

std::string requirements() { return all(requirementsMagic, std::uint32_t{12}, std::uint32_t{0}); }

std::string codeDirectory(const Module& module, const std::string& identifier, const Hash& hash) {
    const std::uint32_t none = 0;
    const std::string name = identifier + '\0';
    const std::string special = hashOf(requirements(), hash) + std::string(hash.size, '\0');
    const std::string pages = pageHashes(module.code(), hash);
    const auto hashPlace =
        static_cast<std::uint32_t>(identifierPlace + name.size() + special.size());
    return all(codeDirectoryMagic, hashPlace + size32(pages), codeDirectoryVersion, adHoc) +
           all(hashPlace, static_cast<std::uint32_t>(identifierPlace)) +
           all(specialSlots, size32(pages) / hash.size, size32(module.code())) +
           all(hash.size, hash.kind, std::uint8_t{0}, pagePower, none) +
           all(none, none, none, std::uint64_t{0}) +
           all(std::uint64_t{0}, module.textSize(), std::uint64_t{0}) + name + special + pages;
}

std::string signatureOf(const Module& module, const std::string& identifier) {
    const std::array<std::pair<std::uint32_t, std::string>, 3> blobs = {{
        {codeDirectorySlot, codeDirectory(module, identifier, sha1)},
        {requirementsSlot, requirements()},
        {alternateDirectorySlot, codeDirectory(module, identifier, sha256)},
    }};
    auto place = static_cast<std::uint32_t>(12 + 8 * blobs.size());
    std::string list;
    std::string contents;
    for (const auto& [slot, blob] : blobs) {
        list += all(slot, place);
        contents += blob;
        place += size32(blob);
    }
    return all(signatureMagic, place, static_cast<std::uint32_t>(blobs.size())) + list + contents;
}

}  // namespace

std::string signedModule(std::string module, const std::string& identifier) {
    if (identifier.empty()) throw Refusal("needs an identifier");
    Module code(std::move(module));
    // The header, which is hashed, holds the signature's size, which does not depend on the hashes.
    code.announceSignature(size32(signatureOf(code, identifier)));
    return std::string(code.code()) + signatureOf(code, identifier);
}

}  // namespace quillet::sign
