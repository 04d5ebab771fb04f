// SPDX-License-Identifier: MIT
#include "tests/stress/injured.h"

#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <sys/user.h>

#include <cstddef>
#include <filesystem>
#include <fstream>
#include <set>

namespace quillet::test {

namespace fs = std::filesystem;

namespace {

/// Where a call's number and its third argument stand, and its first.
constexpr auto numberPlace = offsetof(user_regs_struct, orig_rax);
constexpr auto answerPlace = offsetof(user_regs_struct, rax);
constexpr auto firstPlace = offsetof(user_regs_struct, rdi);
constexpr auto thirdPlace = offsetof(user_regs_struct, rdx);

std::string linkAt(const fs::path& path) {
    std::error_code error;
    return fs::read_symlink(path, error).string();
}

std::vector<std::string> listOf(const std::multiset<std::string>& names) {
    return {names.begin(), names.end()};
}

}  // namespace

Injured::Stop Injured::next() {
    const Stop stop = Traced::next();
    if (stop == Stop::after) endCall();
    return stop;
}

void Injured::fail(int error) {
    if (error == oneByte) {
        if (argument(2) > 1) change(thirdPlace, 2, 1);
    } else if (call() == SYS_brk) {
        // Asked for no place it tells where it is: that is how it fails.
        change(firstPlace, 0, 0);
    } else {
        error_ = error;
        if (call() != SYS_close) poke(numberPlace, ~std::uint64_t{0});
    }
}

void Injured::poke(std::size_t place, std::uint64_t value) {
    ptrace(PTRACE_POKEUSER, process(), place, value);
}

/// Until the call is over: programs count on finding their registers as they were.
void Injured::change(std::size_t place, std::size_t index, std::uint64_t value) {
    poke(place, value);
    changed_ = {place, argument(index)};
}

void Injured::endCall() {
    if (changed_) poke(changed_->first, changed_->second);
    changed_.reset();
    if (error_ != 0) poke(answerPlace, static_cast<std::uint64_t>(-error_));
    error_ = 0;
}

std::string Injured::text(std::uint64_t address) const {
    std::string text;
    char byte = 0;
    const iovec here = {&byte, 1};
    for (; text.size() < 4096; ++address, text += byte) {
        const iovec there = {reinterpret_cast<void*>(address), 1};
        if (process_vm_readv(process(), &here, 1, &there, 1, 0) != 1 || byte == 0) break;
    }
    return text;
}

std::string Injured::fileNamed(std::uint64_t number) const {
    const int file = static_cast<int>(number);
    return linkAt("/proc/" + std::to_string(process()) + "/fd/" + std::to_string(file));
}

std::string Injured::inFolder(std::uint64_t folder, std::uint64_t path) const {
    return fs::path{fileNamed(folder)} / text(path);
}

std::string Injured::target(const SystemCall& call) const {
    using Target = SystemCall::Target;
    switch (call.target) {
        case Target::path:
            return text(argument(0));
        case Target::pathIn:
            return inFolder(argument(0), argument(1));
        case Target::paths:
            return text(argument(0)) + " " + text(argument(1));
        case Target::pathsIn:
            return inFolder(argument(0), argument(1)) + " " + inFolder(argument(2), argument(3));
        case Target::file:
            return fileNamed(argument(0));
        case Target::mappedFile:
            return fileNamed(argument(4));
        default:
            return "";
    }
}

std::vector<std::string> Injured::openFiles() const {
    std::multiset<std::string> names;
    const fs::path folder = "/proc/" + std::to_string(process()) + "/fd";
    for (const auto& entry : fs::directory_iterator{folder}) names.insert(linkAt(entry.path()));
    return listOf(names);
}

std::vector<std::string> Injured::mappedFiles() const {
    std::multiset<std::string> names;
    std::ifstream maps{"/proc/" + std::to_string(process()) + "/maps"};
    for (std::string line; std::getline(maps, line);) {
        const std::size_t slash = line.find('/');
        if (slash != std::string::npos) names.insert(line.substr(slash));
    }
    return listOf(names);
}

}  // namespace quillet::test
