// SPDX-License-Identifier: MIT
#include "tests/support/disk.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/syscall.h>

#include <algorithm>

#include "tests/support/program.h"

namespace quillet::test {

namespace fs = std::filesystem;

Disk::Disk(const fs::path& folder) : root_{folder} { add(folder); }

Disk::Number Disk::add(const fs::path& path) {
    const Number number = nodes_.size();
    nodes_.emplace_back();
    Node node;
    node.isFolder = fs::is_directory(path);
    if (node.isFolder) {
        for (const auto& entry : fs::directory_iterator{path}) {
            node.entries[entry.path().filename()] = add(entry.path());
        }
    } else {
        node.bytes = readText(path);
    }
    node.flushedEntries = node.entries;
    node.flushedBytes = node.bytes;
    nodes_[number] = std::move(node);
    return number;
}

std::optional<Disk::Number> Disk::find(const fs::path& path) const {
    Number number = 0;
    for (const fs::path& name : path.lexically_relative(root_)) {
        if (name == ".") continue;
        const Folder& entries = nodes_[number].entries;
        const auto entry = entries.find(name);
        if (entry == entries.end()) return std::nullopt;
        number = entry->second;
    }
    return number;
}

std::optional<Disk::Place> Disk::placeOf(const fs::path& path) const {
    const auto folder = find(path.parent_path());
    return folder ? std::optional{Place{*folder, path.filename()}} : std::nullopt;
}

void Disk::apply(const Change& change) {
    if (change.from) nodes_[change.from->folder].entries.erase(change.from->name);
    if (change.to) nodes_[change.to->folder].entries[change.to->name] = change.node;
    pending_.push_back(change);
}

void Disk::make(const fs::path& path, bool isFolder) {
    const auto place = placeOf(path);
    if (!place || find(path)) return;
    nodes_.emplace_back().isFolder = isFolder;
    apply({nodes_.size() - 1, std::nullopt, place});
}

void Disk::remove(const fs::path& path) {
    if (const auto node = find(path)) apply({*node, placeOf(path), std::nullopt});
}

void Disk::rename(const fs::path& from, const fs::path& to) {
    const auto node = find(from);
    if (node) apply({*node, placeOf(from), placeOf(to)});
}

void Disk::link(const fs::path& from, const fs::path& to) {
    if (const auto node = find(from)) apply({*node, std::nullopt, placeOf(to)});
}

void Disk::write(const SupervisedCall& call, std::size_t position) {
    const auto node = find(call.file(0));
    if (!node) return;
    const std::string added = call.bytes(1, call.size(2));
    std::string& bytes = nodes_[*node].bytes;
    if (bytes.size() < position + added.size()) bytes.resize(position + added.size());
    bytes.replace(position, added.size(), added);
}

void Disk::resize(const SupervisedCall& call, std::size_t size) {
    if (const auto node = find(call.file(0))) nodes_[*node].bytes.resize(size);
}

void Disk::allocate(const SupervisedCall& call, std::size_t size) {
    const auto node = find(call.file(0));
    if (node && nodes_[*node].bytes.size() < size) nodes_[*node].bytes.resize(size);
}

void Disk::flush(Number number) {
    Node& node = nodes_[number];
    node.flushedBytes = node.bytes;
    node.flushedEntries = node.entries;
    std::erase_if(pending_, [&](const Change& change) {
        return (change.from && change.from->folder == number) ||
               (change.to && change.to->folder == number);
    });
}

void Disk::follow(const SupervisedCall& call) {
    const auto paths = call.paths();
    switch (call.number) {
        case SYS_openat:
            if ((call.arguments[2] & O_CREAT) != 0) make(paths[0], false);
            if ((call.arguments[2] & O_TRUNC) != 0) nodes_[find(paths[0]).value()].bytes.clear();
            break;
        case SYS_mkdirat:
            return make(paths[0], true);
        case SYS_unlinkat:
            return remove(paths[0]);
#ifdef SYS_renameat
        case SYS_renameat:
#endif
        case SYS_renameat2:
            return rename(paths[0], paths[1]);
        case SYS_linkat:
            return link(paths[0], paths[1]);
#ifdef SYS_mkdir
        case SYS_mkdir:
            return make(paths[0], true);
        case SYS_unlink:
        case SYS_rmdir:
            return remove(paths[0]);
        case SYS_rename:
            return rename(paths[0], paths[1]);
        case SYS_link:
            return link(paths[0], paths[1]);
#endif
        case SYS_write: {
            const auto node = find(call.file(0));
            return write(call, node ? nodes_[*node].bytes.size() : 0);
        }
        case SYS_pwrite64:
            return write(call, call.size(3));
        case SYS_ftruncate:
            return resize(call, call.size(1));
        case SYS_fallocate:
            return allocate(call, call.size(2) + call.size(3));
        case SYS_fsync:
            if (const auto node = find(call.file(0))) flush(*node);
            break;
        default:
            break;
    }
}

void Disk::collect(State& state, const std::vector<Folder>& folders, Number folder,
                   const fs::path& path) const {
    for (const auto& [name, number] : folders[folder]) {
        const Node& node = nodes_[number];
        if (node.isFolder) {
            collect(state, folders, number, path / name);
        } else {
            const bool isWhole = node.bytes == node.flushedBytes;
            state[path / name] = isWhole ? std::optional{node.bytes} : std::nullopt;
        }
    }
}

std::vector<Disk::State> Disk::states() const {
    constexpr std::size_t mostPending = 12;
    EXPECT_LE(pending_.size(), mostPending) << "too much is not flushed";
    const std::size_t count = std::min(pending_.size(), mostPending);
    std::vector<State> states;
    for (std::size_t kept = 0; kept < std::size_t{1} << count; ++kept) {
        std::vector<Folder> folders;
        for (const Node& node : nodes_) folders.push_back(node.flushedEntries);
        for (std::size_t i = 0; i < count; ++i) {
            const Change& change = pending_[i];
            if ((kept >> i & 1U) == 0) continue;
            if (change.from) folders[change.from->folder].erase(change.from->name);
            if (change.to) folders[change.to->folder][change.to->name] = change.node;
        }
        collect(states.emplace_back(), folders, 0, root_);
    }
    return states;
}

std::set<std::string> Disk::contentsOf(const fs::path& path) const {
    std::set<std::string> contents;
    for (const State& state : states()) {
        const auto found = state.find(path);
        contents.insert(found == state.end() ? absent : found->second.value_or(torn));
    }
    return contents;
}

}  // namespace quillet::test
