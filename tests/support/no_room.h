// SPDX-License-Identifier: MIT
#pragma once

#include <sys/resource.h>

namespace quillet::test {

/// While it lives, no file of this process can grow: writes fail as on a full disk.
class NoRoom {
public:
    NoRoom();
    ~NoRoom();
    NoRoom(const NoRoom&) = delete;
    NoRoom& operator=(const NoRoom&) = delete;

private:
    rlimit before_ = {};
    void (*handler_)(int);
};

}  // namespace quillet::test
