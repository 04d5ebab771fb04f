// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/supervisor.h"

namespace quillet::test {

/// A model of a disk that may lose its power. Of what was written to a file since it was last
/// flushed it keeps nobody knows what. Of the changes of a folder since that was last flushed (a
/// name that came, went or moved) it keeps any, whatever it keeps of the others.
class Disk {
public:
    /// What a loss of power may leave: the bytes of each file by its path, nothing for bytes that
    /// nobody knows.
    using State = std::map<std::filesystem::path, std::optional<std::string>>;

    /// A disk that holds what is now in `folder`, all of it flushed.
    explicit Disk(const std::filesystem::path& folder);

    /// Follows a call that is about to be made and taken to succeed.
    void follow(const SupervisedCall& call);

    /// Every state that a loss of power at this moment may leave. Fails the test when too much is
    /// not flushed for that.
    std::vector<State> states() const;

    /// What may then be at `path`: bytes, or one of these.
    std::set<std::string> contentsOf(const std::filesystem::path& path) const;
    static constexpr char absent[] = "(absent)";
    static constexpr char torn[] = "(torn)";

private:
    using Number = std::size_t;
    using Folder = std::map<std::string, Number>;
    struct Node {
        bool isFolder = false;
        /// As the system shows it, and as it was when it was last flushed.
        Folder entries;
        Folder flushedEntries;
        std::string bytes;
        std::string flushedBytes;
    };
    struct Place {
        Number folder = 0;
        std::string name;
    };
    /// A node comes to a place, goes from one, or both at once.
    struct Change {
        Number node = 0;
        std::optional<Place> from;
        std::optional<Place> to;
    };

    Number add(const std::filesystem::path& path);
    /// The place of a path whose folder is in the model.
    std::optional<Place> placeOf(const std::filesystem::path& path) const;
    std::optional<Number> find(const std::filesystem::path& path) const;
    void apply(const Change& change);
    void make(const std::filesystem::path& path, bool isFolder);
    void remove(const std::filesystem::path& path);
    void rename(const std::filesystem::path& from, const std::filesystem::path& to);
    void link(const std::filesystem::path& from, const std::filesystem::path& to);
    void write(const SupervisedCall& call, std::size_t position);
    void resize(const SupervisedCall& call, std::size_t size);
    void allocate(const SupervisedCall& call, std::size_t size);
    void flush(Number number);
    void collect(State& state, const std::vector<Folder>& folders, Number folder,
                 const std::filesystem::path& path) const;

    std::filesystem::path root_;
    std::vector<Node> nodes_;
    /// Those that are on the disk or not, in their order.
    std::vector<Change> pending_;
};

}  // namespace quillet::test
