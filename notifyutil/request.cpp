// SPDX-License-Identifier: MIT
#include "notifyutil/request.h"

#include <algorithm>
#include <charconv>
#include <map>
#include <optional>
#include <string_view>
#include <utility>

#include "notifyutil/options.h"
#include "program/suggestion.h"
#include "program/usage_error.h"

namespace quillet {

namespace {

using Words = std::vector<std::string>;

constexpr char oneKind[] = "there is one kind of registration here, that of -w";
constexpr char noServer[] = "no process serves the names here; they are in a file";

/// What other systems' users may look for, and why it is not here.
const std::map<std::string_view, const char*> refused = {
    {"-port", oneKind},     {"-file", oneKind}, {"-check", oneKind}, {"-signal", oneKind},
    {"-dispatch", oneKind}, {"-M", noServer},   {"-R", noServer}};

template <class Number>
std::optional<Number> numberIn(std::string_view digits) {
    Number number = 0;
    const auto [end, error] = std::from_chars(digits.begin(), digits.end(), number);
    const bool isWhole = error == std::errc{} && end == digits.end();
    return isWhole ? std::optional{number} : std::nullopt;
}

/// How many posts "-5" is to wait for; nothing for other words.
std::optional<std::uint64_t> countIn(const std::string& word) {
    if (word.size() < 2 || word.find_first_not_of("0123456789", 1) != std::string::npos) return {};
    const auto count = numberIn<std::uint32_t>(std::string_view{word}.substr(1));
    if (!count || *count == 0) throw UsageError("no count of posts: " + inQuotes(word));
    return *count;
}

class Reader {
public:
    explicit Reader(const Words& words) : rest_{words.begin()}, end_{words.end()} {}

    Request read() {
        while (rest_ != end_ && request_.kind == Request::Kind::operations) {
            const auto first = rest_;
            const std::string& word = *rest_++;
            if (word.starts_with("--")) {
                takeLong(word);
            } else if (word.starts_with('-')) {
                takeShort(word);
                std::for_each(first, rest_, [this](auto& taken) { keep(taken); });
            } else {
                throw UsageError("unexpected word: " + inQuotes(word));
            }
        }
        return std::move(request_);
    }

private:
    using Kind = Operation::Kind;

    void keep(const std::string& word) {
        request_.command.append(request_.command.empty() ? "" : " ").append(word);
    }

    void takeShort(const std::string& word) {
        if (word == "-p") {
            add(word, Kind::post);
        } else if (word == "-g") {
            add(word, Kind::get);
        } else if (word == "-s") {
            Operation& operation = add(word, Kind::set);
            operation.number = state();
        } else if (word == "-w") {
            add(word, Kind::wait).number = Operation::endless;
        } else if (const auto count = countIn(word)) {
            add(word, Kind::wait).number = *count;
        } else {
            takeManner(word);
        }
    }

    /// How the operations are done.
    void takeManner(const std::string& word) {
        if (word == "-v") {
            request_.isVerbose = true;
        } else if (word == "-q") {
            request_.isQuiet = true;
        } else if (word == "-z") {
            request_.pause = pause();
        } else if (word == "-h") {
            request_.kind = Request::Kind::help;
        } else {
            refuse(word);
        }
    }

    void takeLong(const std::string& word) {
        const std::size_t sign = word.find('=');
        const std::string name = word.substr(0, sign);
        const auto argument = [&] {
            return sign == std::string::npos ? next(name) : word.substr(sign + 1);
        };
        if (name == "--root") {
            request_.root = argument();
            if (request_.root.empty()) throw UsageError("--root needs a name");
        } else if (name == "--color") {
            request_.color = color(argument());
        } else if (name == "--completion") {
            request_.kind = Request::Kind::completion;
            request_.shell = argument();
        } else if (word == "--help") {
            request_.kind = Request::Kind::help;
        } else if (word == "--version") {
            request_.kind = Request::Kind::version;
        } else {
            throw UsageError("no such option: " + inQuotes(word) + suggestion(name, longOptions()));
        }
    }

    [[noreturn]] static void refuse(const std::string& word) {
        const auto found = refused.find(word);
        if (found == refused.end()) throw UsageError("no such option: " + inQuotes(word));
        throw UsageError(word + " is refused: " + found->second);
    }

    /// The word that `option` needs.
    const std::string& next(const std::string& option) {
        if (rest_ == end_) throw UsageError("option " + inQuotes(option) + " needs an argument");
        return *rest_++;
    }

    Operation& add(const std::string& option, Kind kind) {
        const std::string& name = next(option);
        if (name.empty()) throw UsageError(option + " needs a name");
        return request_.operations.emplace_back(Operation{.kind = kind, .name = name});
    }

    std::uint64_t state() {
        const std::string& word = next("-s");
        const auto number = numberIn<std::uint64_t>(word);
        if (!number) throw UsageError("no state, a 64-bit number: " + inQuotes(word));
        return *number;
    }

    std::chrono::milliseconds pause() {
        const std::string& word = next("-z");
        const auto number = numberIn<std::uint32_t>(word);
        if (!number) throw UsageError("no number of milliseconds: " + inQuotes(word));
        return std::chrono::milliseconds{*number};
    }

    Words::const_iterator rest_;
    Words::const_iterator end_;
    Request request_;
};

}  // namespace

Request readRequest(const Words& words) { return Reader{words}.read(); }

}  // namespace quillet
