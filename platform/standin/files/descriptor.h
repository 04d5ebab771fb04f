// SPDX-License-Identifier: MIT
#pragma once

#include <unistd.h>

#include <cerrno>
#include <utility>

namespace quillet::standin {

/// Repeats a system call for as long as a signal interrupts it.
template <class Call>
auto uninterrupted(Call call) {
    for (;;) {
        const auto result = call();
        if (result != -1 || errno != EINTR) return result;
    }
}

/// An open file, or none (-1), which is closed with the object. errno is left as it was.
class Descriptor {
public:
    explicit Descriptor(int number) : number_{number} {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() {
        const int error = errno;
        if (number_ != -1) ::close(number_);
        errno = error;
    }

    int number() const { return number_; }
    bool isOpen() const { return number_ != -1; }
    /// Hands the file over to the caller, who closes it.
    int release() { return std::exchange(number_, -1); }

private:
    int number_;
};

}  // namespace quillet::standin
