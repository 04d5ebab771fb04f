// SPDX-License-Identifier: MIT
#include "tests/support/no_room.h"

#include <csignal>

namespace quillet::test {

NoRoom::NoRoom() : handler_{std::signal(SIGXFSZ, SIG_IGN)} {
    getrlimit(RLIMIT_FSIZE, &before_);
    const rlimit none = {0, before_.rlim_max};
    setrlimit(RLIMIT_FSIZE, &none);
}

NoRoom::~NoRoom() {
    setrlimit(RLIMIT_FSIZE, &before_);
    std::signal(SIGXFSZ, handler_);
}

}  // namespace quillet::test
