// SPDX-License-Identifier: MIT
#include "platform/standin/device/journal_line.h"

namespace quillet::standin {

namespace {

constexpr char hexDigits[] = "0123456789abcdef";

bool isPlain(char c) { return c > ' ' && c <= '~' && c != '%' && c != '='; }

}  // namespace

void JournalLine::put(char c) {
    isOverfull_ = isOverfull_ || size_ == capacity - mark.size();
    if (!isOverfull_) text_[size_++] = c;
}

void JournalLine::putEscaped(std::string_view text) {
    for (const char c : text) {
        if (isPlain(c)) {
            put(c);
        } else {
            const auto byte = static_cast<unsigned char>(c);
            put('%');
            put(hexDigits[byte / 16]);
            put(hexDigits[byte % 16]);
        }
    }
}

void JournalLine::keepWhole(std::size_t before) {
    if (isOverfull_) size_ = before;
    isOverfull_ = false;
}

void JournalLine::add(std::string_view word) {
    const std::size_t before = size_;
    if (size_ > 1) put(' ');
    putEscaped(word);
    keepWhole(before);
}

void JournalLine::add(std::string_view key, std::string_view value) {
    const std::size_t before = size_;
    put(' ');
    putEscaped(key);
    put('=');
    putEscaped(value);
    keepWhole(before);
}

std::string_view JournalLine::end() {
    size_ += mark.copy(&text_[size_], mark.size());
    return {text_.data(), size_};
}

}  // namespace quillet::standin
