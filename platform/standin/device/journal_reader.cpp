// SPDX-License-Identifier: MIT
#include "platform/standin/device/journal_reader.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

#include "platform/standin/device/journal.h"
#include "platform/standin/files/same_file.h"

namespace quillet::standin {

namespace {

constexpr std::size_t leadingWords = 5;

/// The words of a whole line, without the mark at its end; none for any other.
std::vector<std::string_view> wordsOf(std::string_view line) {
    constexpr std::string_view mark = " .";
    if (!line.ends_with(mark)) return {};
    line.remove_suffix(mark.size());
    std::vector<std::string_view> words;
    while (!line.empty()) {
        const std::size_t end = std::min(line.find(' '), line.size());
        words.push_back(line.substr(0, end));
        line.remove_prefix(std::min(end + 1, line.size()));
    }
    return words;
}

template <class Number>
bool readNumber(std::string_view word, Number& number, int base = 10) {
    const auto [end, error] = std::from_chars(word.begin(), word.end(), number, base);
    return error == std::errc{} && end == word.end();
}

std::string unescaped(std::string_view word) {
    std::string text;
    while (!word.empty()) {
        unsigned byte = 0;
        const std::string_view digits = word.substr(1, 2);
        const bool isEscape = word[0] == '%' && digits.size() == 2 && readNumber(digits, byte, 16);
        text += isEscape ? static_cast<char>(byte) : word[0];
        word.remove_prefix(isEscape ? 3 : 1);
    }
    return text;
}

/// Zeros when there is none.
struct stat statusOf(const Descriptor& file) {
    struct stat status {};
    fstat(file.number(), &status);
    return status;
}

int openJournal(const std::filesystem::path& path) {
    constexpr int flags = O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
    return uninterrupted([&] { return open(path.c_str(), flags); });
}

}  // namespace

std::string_view JournalEntry::find(std::string_view key) const {
    const auto found = std::ranges::find(
        details, key, [](const auto& detail) -> std::string_view { return detail.first; });
    return found == details.end() ? std::string_view{} : found->second;
}

std::optional<JournalEntry> parseJournalLine(std::string_view line) {
    const auto words = wordsOf(line);
    JournalEntry entry;
    if (words.size() < leadingWords || !readNumber(words[0], entry.time) ||
        !readNumber(words[1], entry.process) || !readNumber(words[2], entry.number)) {
        return std::nullopt;
    }
    entry.program = unescaped(words[3]);
    entry.event = unescaped(words[4]);
    for (std::size_t i = leadingWords; i < words.size(); ++i) {
        const std::size_t sign = words[i].find('=');
        if (sign == std::string_view::npos) return std::nullopt;
        entry.details.emplace_back(unescaped(words[i].substr(0, sign)),
                                   unescaped(words[i].substr(sign + 1)));
    }
    return entry;
}

JournalReader::JournalReader(std::filesystem::path path) : path_{std::move(path)} {}

std::vector<JournalEntry> JournalReader::read() {
    std::vector<JournalEntry> entries;
    if (isAtEnd()) return entries;
    if (file_) readFile(entries);
    while (openNext(entries)) readFile(entries);
    return entries;
}

bool JournalReader::isAtEnd() const {
    if (!file_) return false;
    const auto status = statusOf(*file_);
    return status.st_size <= read_ && Journal::goesOnIn(status);
}

bool JournalReader::openNext(std::vector<JournalEntry>& entries) {
    const bool isFirst = !std::exchange(hasBegun_, true);
    // A file that nobody finds any more was followed by the one that has its older name now.
    const bool isOlderNext = isFirst || (file_ && statusOf(*file_).st_nlink == 0);
    for (const auto& path : {Journal::older(path_), path_}) {
        if (path != path_ && !isOlderNext) continue;
        Descriptor next{openJournal(path)};
        const auto status = statusOf(next);
        if ((file_ && isSameFile(status, statusOf(*file_))) || !S_ISREG(status.st_mode)) continue;
        // Once more: what was added before the file was put away.
        if (file_) readFile(entries);
        file_.emplace(next.release());
        read_ = 0;
        return true;
    }
    return false;
}

void JournalReader::readFile(std::vector<JournalEntry>& entries) {
    std::array<char, 65536> chunk;
    for (;;) {
        const auto size =
            uninterrupted([&] { return ::read(file_->number(), chunk.data(), chunk.size()); });
        if (size <= 0) break;
        rest_.append(chunk.data(), static_cast<std::size_t>(size));
        read_ += size;
    }
    std::size_t begin = 0;
    for (std::size_t end = 0; (end = rest_.find('\n', begin)) != std::string::npos;) {
        take(std::string_view{rest_}.substr(begin, end - begin), entries);
        begin = end + 1;
    }
    rest_.erase(0, begin);
    // The last line is there as soon as it is whole: nothing follows it yet.
    if (take(rest_, entries)) rest_.clear();
}

bool JournalReader::take(std::string_view line, std::vector<JournalEntry>& entries) {
    auto entry = parseJournalLine(line);
    if (!entry) return false;
    const std::pair own{entry->number, entry->time};
    const auto [last, isNew] = last_.try_emplace(entry->process, own);
    if (isNew || last->second != own) {
        last->second = own;
        entries.push_back(std::move(*entry));
    }
    return true;
}

}  // namespace quillet::standin
